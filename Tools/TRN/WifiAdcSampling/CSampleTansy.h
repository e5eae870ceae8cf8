// Capture of the second generation: always descriptor form B, and frequency compensation at each read.
#pragma once

#include "CSampleSorrel.h"

namespace WifiAdc {

class CSampleTansy : public CSampleSorrel {
public:
    using CSampleSorrel::CSampleSorrel;

protected:
    void PrepareRead() override;
    void AfterSweep() override;
};

}  // namespace WifiAdc
