// Every Wi-Fi channel that the tool can measure on: the channel plan as constant tables, a device's selection of them,
// look-ups and the running line numbers of stored results; and the conversions of chains and bandwidths.
// Thread: constant data and pure functions, safe from everywhere; the selection's maps belong to the caller.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "ChannelPlan.h"
#include "QuayCommands.h"

/// One channel. Row 0 of every table is the placeholder (0, 0), so that a position in a table is 1-based.
struct ChannelRow {
    double channel = 0.0;
    double frequency = 0.0;  ///< centre, MHz
    bool operator==(const ChannelRow&) const = default;
};

/// Position of a table in the channel plan; any other number is no table.
enum ChannelTableId : std::uint32_t {};
constexpr std::size_t ChannelTableCount = RadioFacts::ChannelPlan.size();

/// A device's rows of each table that it supports, placeholder first.
using ChannelTables = std::map<ChannelTableId, std::vector<ChannelRow>>;
/// (channel, band) to one flag a bandwidth: the device may use this channel at this bandwidth.
using ChannelFlags = std::map<std::pair<std::int32_t, std::uint32_t>, std::array<bool, RadioFacts::BandwidthCount>>;

namespace ChannelDatabase {

constexpr std::uint32_t UnknownBandwidth = 6;
/// Hardware type before the radio was asked.
constexpr std::uint32_t UnknownHardware = 32;

/// Rows of a constant table, placeholder first, channels ascending; empty for an id that is no table.
std::span<const ChannelRow> Table(ChannelTableId id);
std::uint32_t BandOf(ChannelTableId id);
std::uint32_t BandwidthOf(ChannelTableId id);
/// Table of a pair; a width that only one band has is that band's table whatever the band. Nothing for a pair without a
/// table.
std::optional<ChannelTableId> FindTable(std::uint32_t band, std::uint32_t bandwidth);

// The device's selection.
/// The order in which a device's tables are asked for: by width, then by band.
constexpr std::array<ChannelTableId, ChannelTableCount> SelectionOrder = [] {
    std::array<ChannelTableId, ChannelTableCount> order{};
    for (std::size_t id = 0; id < order.size(); ++id)
        order[id] = static_cast<ChannelTableId>(id);
    std::ranges::sort(order, {}, [](ChannelTableId id) {
        return std::pair(RadioFacts::ChannelPlan[id].bandwidth, RadioFacts::ChannelPlan[id].band);
    });
    return order;
}();
bool IsBandSupportedForDevice(ChannelTableId id, std::uint32_t cardType, std::uint32_t hwType);
/// Adds the rows that `isSupported(channel)` accepts, and row 0 always, to the table's list, and stores each answer in
/// the channel's flag of `bandwidth`. A number that is no bandwidth gets no flag.
void AddSupportedRows(std::span<const ChannelRow> rows, ChannelTableId id, std::uint32_t band, std::uint32_t bandwidth,
                      const std::function<bool(std::uint32_t channel)>& isSupported, ChannelTables& tables,
                      ChannelFlags& flags);
/// One line an entry, such as "(36,HB),1,1,1,0,0" and a line end.
std::string FlagsToString(const ChannelFlags& flags);

// Look-ups in the constant tables. Each logs and throws Common::Exception when the channel isn't there.
double GetChannelInfoByChannel(double channel, std::uint32_t bandwidth, std::uint32_t band);
std::int32_t GetChannelIndex(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band);
/// Channel number of a row; 0, as in the placeholder, for a row outside the table or a pair without one.
std::int32_t GetChannelFromIndex(std::int32_t row, std::uint32_t band, std::uint32_t bandwidth);

// Line numbers: one number a row across all tables, in the order of their ids, placeholders counted.
std::int32_t GetChannelIndex_802_11(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band);
struct ChannelOfLine {
    std::uint32_t band;
    std::uint32_t bandwidth;
    std::int32_t channel;
};
/// The inverse; nothing for a line that belongs to no channel (a placeholder's, or one outside the tables).
std::optional<ChannelOfLine> GetChannelFromLineNumber(std::int32_t line);

// Conversions.
/// "20" to "320"; empty for another number.
std::string BandwidthEnumToValue(std::uint32_t bandwidth);
/// 0 for a width that isn't one of the five.
std::uint32_t BandwidthValueToEnum(std::int32_t value);
/// "A", "B", "AB" to 1, 2, 3; else logs and throws Common::Exception.
std::uint32_t ConvertChainStringToU32(const std::string& chain);
std::string ConvertChainU32ToString(std::uint32_t chain);

bool Is2RxChainsCard(std::uint32_t cardType);
/// Writes the antenna fields of a device. Throws a pointer to Common::Exception while the hardware is still unknown.
void GuiToHWAnts(std::uint32_t cardType, std::uint32_t hwType, quayCommand::RxConfig& rxConfig,
                 quayCommand::AdcConfig& adcConfig);

}  // namespace ChannelDatabase
