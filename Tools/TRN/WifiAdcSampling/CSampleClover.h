// Capture of the fourth generation: the source is routed before each capture.
#pragma once

#include "CSampleYarrow.h"

namespace WifiAdc {

class CSampleClover : public CSampleYarrow {
public:
    using CSampleYarrow::CSampleYarrow;

protected:
    void PrepareRead() override;
};

}  // namespace WifiAdc
