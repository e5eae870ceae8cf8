// The name of a sample file tells the tuning: "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace SampleFiles {

/// Text between the first `key` in a name and the next "_" behind it; empty when either is missing.
std::string NameParameter(std::string_view name, std::string_view key);

/// The values of "BAND_", "CHANNEL_", "BW_" and "CHAIN_", in any order and with anything between them.
struct CaptureName {
    std::string band;
    std::string channel;
    std::string bandwidth;
    std::string chain;
};

/// Nothing when one of the four is empty.
std::optional<CaptureName> ReadCaptureName(std::string_view name);

}  // namespace SampleFiles
