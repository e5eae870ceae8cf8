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

std::vector<std::uint32_t> ChannelsOf(const AdapterAbilities& abilities, const RadioFacts::ChannelSet& set) {
    const auto isSupported = [&](std::uint32_t channel) {
        return channel != 0 && abilities.nvm->IsChannelSupported(channel, set.bandwidth, set.band);
    };
    std::vector<std::uint32_t> channels;
    for (const Preference& preference : Preferences)
        if (preference.band == set.band && preference.bandwidth == set.bandwidth)
            std::ranges::copy_if(preference.channels, std::back_inserter(channels), isSupported);
    RadioFacts::ForEachChannel(set, [&](std::int32_t channel) {
        const auto number = static_cast<std::uint32_t>(channel);
        if (channels.empty() && isSupported(number)) channels.push_back(number);
    });
    return channels;
}

}  // namespace

std::vector<PlanEntry> MakeCapturePlan(const AdapterAbilities& abilities) {
    std::vector<PlanEntry> plan;
    for (const RadioFacts::ChannelSet& set : RadioFacts::ChannelPlan) {
        if (!RadioFacts::CanTune(abilities.hwType, abilities.cardType, set) || !abilities.nvm->IsBandEnabled(set.band))
            continue;
        for (const std::uint32_t channel : ChannelsOf(abilities, set)) {
            for (const std::uint32_t chain : {1U, 2U}) {
                if (abilities.antennaMask & chain) plan.push_back({set.band, set.bandwidth, channel, chain});
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
