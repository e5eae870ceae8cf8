// The one channel plan: bands, widths, and the channels of each band at each width. A new width is a row of Bandwidths
// and a row of ChannelPlan. Band and bandwidth numbers are positions in their tables.
// Thread: constant data and pure functions, safe from everywhere.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace RadioFacts {

struct Band {
    std::string_view name;       ///< as a person writes it, in GHz
    std::string_view otherName;  ///< accepted besides; empty: none
    std::string_view code;       ///< in lists of channels
    double originMhz;            ///< where channel number 0 would lie
};
inline constexpr std::array<Band, 3> Bands{{
    {"2.4", "", "LB", 2407.0},
    {"5.2", "5", "HB", 5000.0},
    {"6-7", "", "UHB", 5950.0},
}};
constexpr std::uint32_t BandCount = Bands.size();

struct Bandwidth {
    std::string_view name;  ///< decimal text of the width
    std::uint32_t mhz;
    double cutoffMhz = 1.0;  ///< corner of the roll-off that the engine's compensation undoes; 1: none is told
};
inline constexpr std::array<Bandwidth, 5> Bandwidths{{
    {"20", 20, 9.0},
    {"40", 40, 18.0},
    {"80", 80, 36.0},
    {"160", 160, 72.0},
    {"320", 320},
}};
constexpr std::uint32_t BandwidthCount = Bandwidths.size();

namespace Detail {
/// The names of a table's rows, split by "|".
template <const auto& Table>
inline constexpr auto JoinedNames = [] {
    constexpr std::size_t length = [] {
        std::size_t sum = Table.size() - 1;
        for (const auto& row : Table)
            sum += row.name.size();
        return sum;
    }();
    std::array<char, length> text{};
    std::size_t at = 0;
    for (const auto& row : Table) {
        if (at != 0) text[at++] = '|';
        for (const char c : row.name)
            text[at++] = c;
    }
    return text;
}();
}  // namespace Detail

/// "2.4|5.2|6-7" and "20|40|80|160|320": the choices of a command line.
inline constexpr std::string_view BandChoices(Detail::JoinedNames<Bands>.data(), Detail::JoinedNames<Bands>.size());
inline constexpr std::string_view BandwidthChoices(Detail::JoinedNames<Bandwidths>.data(),
                                                   Detail::JoinedNames<Bandwidths>.size());

/// Channels first, first + step, ... up to and with last.
struct ChannelRun {
    std::int32_t first = 1;
    std::int32_t last = 0;
    std::int32_t step = 1;
};

/// The channels of one band at one width, ascending.
struct ChannelSet {
    std::uint32_t band;
    std::uint32_t bandwidth;
    std::array<ChannelRun, 2> runs;
};
/// By band, then by width; a pair that is missing has no channels.
inline constexpr auto ChannelPlan = std::to_array<ChannelSet>({
    {0, 0, {{{1, 14, 1}}}},
    {0, 1, {{{3, 11, 1}}}},
    {1, 0, {{{36, 144, 4}, {149, 181, 4}}}},
    {1, 1, {{{38, 142, 8}, {151, 175, 8}}}},
    {1, 2, {{{42, 138, 16}, {155, 171, 16}}}},
    {1, 3, {{{50, 114, 32}, {163, 163, 32}}}},
    {2, 0, {{{1, 233, 4}}}},
    {2, 1, {{{3, 227, 8}}}},
    {2, 2, {{{7, 215, 16}}}},
    {2, 3, {{{15, 207, 32}}}},
    {2, 4, {{{31, 191, 32}}}},
});

/// Calls `visit(channel)` for each channel of a set, ascending.
template <typename Visit>
constexpr void ForEachChannel(const ChannelSet& set, Visit visit) {
    for (const ChannelRun& run : set.runs)
        for (std::int32_t channel = run.first; channel <= run.last; channel += run.step)
            visit(channel);
}

/// Width in MHz; 0 for a number that is no bandwidth.
constexpr std::uint32_t WidthMhz(std::uint32_t bandwidth) {
    return bandwidth < BandwidthCount ? Bandwidths[bandwidth].mhz : 0;
}

/// Centre in MHz by the band's rule alone, 5 MHz a number, whether the band has the channel or not; 0 for no band.
/// The radio vocabulary shows channels by it, channel 14 of 2.4 GHz too.
constexpr double RuleCentreMhz(std::uint32_t band, double channel) {
    return band < BandCount ? Bands[band].originMhz + 5.0 * channel : 0.0;
}

/// Centre in MHz that a receiver tunes to: by the rule but for the one channel that stands apart from its band.
constexpr double CentreMhz(std::uint32_t band, double channel) {
    if (band == 0 && channel == 14.0) return 2484.0;
    return RuleCentreMhz(band, channel);
}

/// The set of a pair; null when it has none.
const ChannelSet* FindChannelSet(std::uint32_t band, std::uint32_t bandwidth);

/// Number of channels of a set.
constexpr std::size_t ChannelCount(const ChannelSet& set) {
    std::size_t count = 0;
    ForEachChannel(set, [&](std::int32_t) { ++count; });
    return count;
}

/// True when the band has this channel at this width.
bool HasChannel(std::uint32_t band, std::uint32_t bandwidth, std::uint32_t channel);

/// The lowest band that has channels of this width; BandCount when none has.
std::uint32_t LowestBandOf(std::uint32_t bandwidth);

/// Number of a band's name or other name.
std::optional<std::uint32_t> FindBand(std::string_view name);

/// Number of a width's name.
std::optional<std::uint32_t> FindBandwidth(std::string_view name);

}  // namespace RadioFacts
