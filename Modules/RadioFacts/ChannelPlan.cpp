#include "ChannelPlan.h"

namespace RadioFacts {
namespace {

template <typename Table>
std::optional<std::uint32_t> PositionOf(const Table& table, typename Table::const_iterator row) {
    if (row == table.end()) return std::nullopt;
    return static_cast<std::uint32_t>(row - table.begin());
}

}  // namespace

const ChannelSet* FindChannelSet(std::uint32_t band, std::uint32_t bandwidth) {
    const auto* const row = std::ranges::find_if(
        ChannelPlan, [&](const ChannelSet& set) { return set.band == band && set.bandwidth == bandwidth; });
    return row == ChannelPlan.end() ? nullptr : row;
}

bool HasChannel(std::uint32_t band, std::uint32_t bandwidth, std::uint32_t channel) {
    const ChannelSet* set = FindChannelSet(band, bandwidth);
    bool found = false;
    if (set) ForEachChannel(*set, [&](std::int32_t one) { found |= static_cast<std::uint32_t>(one) == channel; });
    return found;
}

std::uint32_t LowestBandOf(std::uint32_t bandwidth) {
    const auto* const row = std::ranges::find(ChannelPlan, bandwidth, &ChannelSet::bandwidth);
    return row == ChannelPlan.end() ? BandCount : row->band;
}

std::optional<std::uint32_t> FindBand(std::string_view name) {
    return PositionOf(Bands, std::ranges::find_if(Bands, [&](const Band& band) {
                          return band.name == name || (!band.otherName.empty() && band.otherName == name);
                      }));
}

std::optional<std::uint32_t> FindBandwidth(std::string_view name) {
    return PositionOf(Bandwidths, std::ranges::find(Bandwidths, name, &Bandwidth::name));
}

}  // namespace RadioFacts
