#include "Captures/CapturePlan.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "HardwareTypes.h"

namespace TarnHost {
namespace {

/// The channels that people use most; a pair that is missing is visited at its lowest channel.
struct Preference {
    std::uint32_t band = 0;
    std::uint32_t bandwidth = 0;
    std::array<std::uint32_t, 3> channels;  ///< 0: none
};

constexpr auto Preferences = std::to_array<Preference>({
    {0, 0, {1, 6, 11}},
    {0, 1, {6}},
    {1, 0, {36, 100, 149}},
    {2, 0, {37}},
    {2, 1, {35}},
    {2, 2, {39}},
    {2, 3, {47}},
});

OSAL::Outcome<std::vector<std::uint32_t>> ChannelsOf(const RadioFacts::ChannelSet& set, const Receives& receives) {
    std::vector<std::uint32_t> wanted;
    for (const Preference& preference : Preferences)
        if (preference.band == set.band && preference.bandwidth == set.bandwidth)
            std::ranges::copy_if(preference.channels, std::back_inserter(wanted), [](auto channel) { return channel; });
    const std::size_t preferred = wanted.size();
    RadioFacts::ForEachChannel(set,
                               [&](std::int32_t channel) { wanted.push_back(static_cast<std::uint32_t>(channel)); });
    std::vector<std::uint32_t> channels;
    for (std::size_t k = 0; k < wanted.size() && (k < preferred || channels.empty()); ++k) {
        const auto isReceived = receives({set.band, set.bandwidth, wanted[k]});
        if (!isReceived) return isReceived.Why();
        if (*isReceived) channels.push_back(wanted[k]);
    }
    return channels;
}

}  // namespace

OSAL::Outcome<std::vector<PlanEntry>> MakeCapturePlan(const quayCommand::AdapterDescription& adapter,
                                                      const Receives& receives) {
    std::vector<PlanEntry> plan;
    for (const RadioFacts::ChannelSet& set : RadioFacts::ChannelPlan) {
        if (!RadioFacts::CanTune(adapter.hwType, adapter.cardType, set)) continue;
        const auto channels = ChannelsOf(set, receives);
        if (!channels) return channels.Why();
        for (const std::uint32_t channel : *channels) {
            for (const std::uint32_t chain : {1U, 2U}) {
                if (adapter.antennaMask & chain) plan.push_back({set.band, set.bandwidth, channel, chain});
            }
        }
    }
    return plan;
}

std::string CaptureFileName(const PlanEntry& entry, unsigned run) {
    const std::string number = std::to_string(run);
    const std::string filler(number.size() < 3 ? 3 - number.size() : 0, '0');
    return "BAND_" + std::string(RadioFacts::Bands.at(entry.band).name) + "_CHANNEL_" + std::to_string(entry.channel) +
           "_BW_" + std::to_string(RadioFacts::WidthMhz(entry.bandwidth)) + "_CHAIN_" + (entry.chain == 1 ? "A" : "B") +
           "_" + filler + number + ".txt";
}

}  // namespace TarnHost
