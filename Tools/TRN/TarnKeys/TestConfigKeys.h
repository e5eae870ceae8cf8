// The configuration of a burn-in desense test: a file of nine lines KEY,VALUE.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// Places of the values in the list of keys.
enum VesperParam : std::size_t {
    VesperParamBandwidth,
    VesperParamRbw,
    VesperParamChainMode,
    VesperParamIterations,
    VesperParamBitcfg,
    VesperParamDisableBit,
    VesperParamLowBand,  ///< channels joined by ";", here and in the next two
    VesperParamHighBand,
    VesperParamUltraHighBand,
    VesperParamCount
};

namespace TarnKeys {

inline constexpr std::array<std::string_view, VesperParamCount> TestConfigKeys{
    "bw", "rbw", "chainMode", "iterations", "bitcfg", "disableBit", "LBChannels", "HBChannels", "UHBChannels"};

}  // namespace TarnKeys
