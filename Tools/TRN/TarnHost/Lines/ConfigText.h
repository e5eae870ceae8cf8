// The answer to -get_supported_config, taken apart.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "ChannelPlan.h"

namespace TarnHost {

struct SupportedConfig {
    std::string macAddress;
    std::string ucode;
    std::string driver;
    std::string usc;
    std::string packetDriver;
    /// Number of supported channels by band number and bandwidth number.
    std::array<std::array<unsigned, RadioFacts::BandwidthCount>, RadioFacts::BandCount> channels{};
};

/// Nothing when the text hasn't the form: four ids, sweep length, chains, MAC address, four versions, then a line
/// "(36,HB),1,1,1,0,0" for each channel with its flags for 20, 40, 80, 160 and 320 MHz.
std::optional<SupportedConfig> ParseConfig(std::string_view text);

}  // namespace TarnHost
