#include "Captures/CapturePlan.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "HardwareTypes.h"

namespace TarnHost {
namespace {

/// Channels `first` to `last` in steps.
struct ChannelRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::uint32_t step = 1;
};

/// One band at one width: its channels, and those that a plan prefers.
struct PlanRow {
    std::uint32_t band = 0;
    std::uint32_t bandwidth = 0;
    std::array<ChannelRange, 2> ranges;
    std::array<std::uint32_t, 3> preferred;
};

constexpr auto rows = std::to_array<PlanRow>({
    {0, 0, {{{1, 14, 1}}}, {1, 6, 11}},
    {0, 1, {{{3, 11, 1}}}, {6}},
    {1, 0, {{{36, 144, 4}, {149, 181, 4}}}, {36, 100, 149}},
    {1, 1, {{{38, 142, 8}, {151, 175, 8}}}, {38}},
    {1, 2, {{{42, 138, 16}, {155, 171, 16}}}, {42}},
    {1, 3, {{{50, 114, 32}, {163, 163, 32}}}, {50}},
    {2, 0, {{{1, 233, 4}}}, {37}},
    {2, 1, {{{3, 227, 8}}}, {35}},
    {2, 2, {{{7, 215, 16}}}, {39}},
    {2, 3, {{{15, 207, 32}}}, {47}},
    {2, 4, {{{31, 191, 32}}}, {31}},
});

std::vector<std::uint32_t> ChannelsOf(const AdapterAbilities& abilities, const PlanRow& row) {
    const auto isSupported = [&](std::uint32_t channel) {
        return channel != 0 && abilities.nvm->IsChannelSupported(channel, row.bandwidth, row.band);
    };
    std::vector<std::uint32_t> channels;
    std::ranges::copy_if(row.preferred, std::back_inserter(channels), isSupported);
    for (const ChannelRange& range : row.ranges) {
        for (std::uint32_t channel = range.first; channels.empty() && channel <= range.last; channel += range.step) {
            if (isSupported(channel)) channels.push_back(channel);
        }
    }
    return channels;
}

}  // namespace

std::vector<PlanEntry> MakeCapturePlan(const AdapterAbilities& abilities) {
    std::vector<PlanEntry> plan;
    for (const PlanRow& row : rows) {
        if (!RadioFacts::CanTune(abilities.hwType, abilities.cardType, {row.band, row.bandwidth, {}}) ||
            !abilities.nvm->IsBandEnabled(row.band))
            continue;
        for (const std::uint32_t channel : ChannelsOf(abilities, row)) {
            for (const std::uint32_t chain : {1U, 2U}) {
                if (abilities.antennaMask & chain) plan.push_back({row.band, row.bandwidth, channel, chain});
            }
        }
    }
    return plan;
}

std::string_view BandName(std::uint32_t band) {
    static constexpr std::array<std::string_view, 3> names = {"2.4", "5.2", "6-7"};
    return names.at(band);
}

unsigned BandwidthMhz(std::uint32_t bandwidth) {
    return 20U << bandwidth;
}

std::string CaptureFileName(const PlanEntry& entry, unsigned run) {
    const std::string number = std::to_string(run);
    const std::string filler(number.size() < 3 ? 3 - number.size() : 0, '0');
    return "BAND_" + std::string(BandName(entry.band)) + "_CHANNEL_" + std::to_string(entry.channel) + "_BW_" +
           std::to_string(BandwidthMhz(entry.bandwidth)) + "_CHAIN_" + (entry.chain == 1 ? "A" : "B") + "_" + filler +
           number + ".txt";
}

}  // namespace TarnHost
