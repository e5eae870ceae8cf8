// The computer that the tool runs on, as its reports tell it.
#pragma once

#include <array>
#include <string>

struct PlatformFact {
    const char* label;  ///< in the text report
    const char* name;   ///< in the front-end's message
    std::string value;  ///< empty where the system doesn't tell
};

/// In the order of the reports.
std::array<PlatformFact, 9> DescribePlatform();
