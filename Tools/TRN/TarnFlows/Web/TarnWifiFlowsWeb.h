// The front-end variant of the flow object: what a front-end asks for is answered in JSON messages.
#pragma once

#include "TarnWifiFlows.h"

class TarnWifiFlowsWeb : public TarnWifiFlows {
public:
    using TarnWifiFlows::TarnWifiFlows;
    ~TarnWifiFlowsWeb() override = default;

    /// Hands the host one message and empties the text answer.
    /// @param type  goes out as it stands, as does `data`, which must be a JSON text
    void OutputObject(std::string type, std::string data) override;
};
