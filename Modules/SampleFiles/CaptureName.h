// The name of a sample file tells the tuning: "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt".
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace SampleFiles {

/// Text between the first `key` in a name and the next "_" behind it; empty when either is missing.
std::string NameParameter(std::string_view name, std::string_view key);

/// In any order and with anything between them.
inline constexpr std::array<std::string_view, 4> NameKeys = {"BAND_", "CHANNEL_", "BW_", "CHAIN_"};

/// The values of `NameKeys`.
struct CaptureName {
    std::string band;
    std::string channel;
    std::string bandwidth;
    std::string chain;
};

/// Nothing when one of the four is empty.
std::optional<CaptureName> ReadCaptureName(std::string_view name);

}  // namespace SampleFiles
