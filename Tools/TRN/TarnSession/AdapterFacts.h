// What the opened adapter is, as data.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Adapter/AdapterDescription.h"
#include "ChannelPlan.h"

namespace TarnSession {

/// Channels in rising order by band number (0 is 2.4 GHz, 1 is 5.2, 2 is 6-7) and bandwidth number (0 is 20 MHz, 1 is
/// 40, 2 is 80, 3 is 160, 4 is 320).
using ChannelLists = std::array<std::array<std::vector<int>, RadioFacts::BandwidthCount>, RadioFacts::BandCount>;

struct AdapterFacts {
    std::uint32_t hwType = 0;
    std::uint32_t cardType = 0;
    std::uint32_t deviceId = 0;
    std::uint32_t chainMask = 0;  ///< bit 0 chain A, bit 1 chain B
    std::uint32_t samples = 0;    ///< of one capture of one chain
    std::string macAddress;
    std::string ucode;
    std::string driver;
    std::string usc;
    std::string packetDriver;
    ChannelLists channels;  ///< that the adapter supports in the country it is set to
};

/// What the description of an adapter tells: ids, chains, samples, MAC address.
AdapterFacts FactsOf(const quayCommand::AdapterDescription& adapter);

/// Adds what the answer to -get_supported_config tells: versions and channels.
/// @param text  four ids, sweep length, chains, MAC address, four versions, then a line "(36,HB),1,1,1,0,0" for each
///              channel with its flags for 20, 40, 80, 160 and 320 MHz
/// @return false, with `facts` unspecified, when the text hasn't that form
bool AddSupportedConfig(std::string_view text, AdapterFacts& facts);

}  // namespace TarnSession
