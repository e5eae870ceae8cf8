#include "Device/ChannelDatabase.h"

#include <algorithm>

#include "Exceptions.h"
#include "Format.h"
#include "HardwareTypes.h"
#include "Streams/Trace.h"

namespace ChannelDatabase {

namespace {

using RadioFacts::ChannelPlan;
using RadioFacts::ChannelSet;

/// Line number of each table's row 0, and at last the number of all rows.
constexpr std::array<std::size_t, ChannelTableCount + 1> FirstLines = [] {
    std::array<std::size_t, ChannelTableCount + 1> lines{};
    for (std::size_t id = 0; id < ChannelTableCount; ++id)
        lines[id + 1] = lines[id] + 1 + ChannelCount(ChannelPlan[id]);  // and the placeholder
    return lines;
}();

/// All tables, one behind the other: a row's place is its line number.
constexpr auto AllRows = [] {
    std::array<ChannelRow, FirstLines[ChannelTableCount]> rows{};
    std::size_t line = 0;
    for (const ChannelSet& set : ChannelPlan) {
        ++line;  // the placeholder stays (0, 0)
        ForEachChannel(set, [&](std::int32_t channel) {
            rows[line++] = {static_cast<double>(channel), RadioFacts::CentreMhz(set.band, channel)};
        });
    }
    return rows;
}();

/// Row of a channel in its constant table, 1 or above. `operation` is the flow operation whose name the log bears.
/// @param channel  double or integer; its own form stands in the messages
template <typename Channel>
std::size_t FindRow(const char* operation, Channel channel, std::uint32_t bandwidth, std::uint32_t band) {
    const auto details = [&](const char* text) { return Common::Format(text) % channel % band % bandwidth; };
    if (bandwidth == UnknownBandwidth) {
        const std::string message = details("unknown channel. Details: channel = ${1} band = ${2}, bandwidth = ${3}");
        Streams::ThrowLogged(operation, message);
    }
    if (const auto id = FindTable(band, bandwidth)) {
        const auto rows = Table(*id);
        const auto found = std::find_if(rows.begin() + 1, rows.end(), [&](const ChannelRow& row) {
            return row.channel == static_cast<double>(channel);
        });
        if (found != rows.end()) return static_cast<std::size_t>(found - rows.begin());
    }
    if (Streams::IsTraceOn())
        Streams::WriteTrace(Streams::TraceError, __FILE__, operation,
                            details("Channel not found. Details: channel = ${1} band = ${2}, bandwidth = ${3}"));
    throw Common::Exception(Common::Format("Channel ${1} not found") % channel);
}

}  // namespace

std::span<const ChannelRow> Table(ChannelTableId id) {
    if (id >= ChannelTableCount) return {};
    return std::span(AllRows).subspan(FirstLines[id], FirstLines[id + 1] - FirstLines[id]);
}

std::uint32_t BandOf(ChannelTableId id) {
    return id < ChannelTableCount ? ChannelPlan[id].band : 0;
}

std::uint32_t BandwidthOf(ChannelTableId id) {
    return id < ChannelTableCount ? ChannelPlan[id].bandwidth : UnknownBandwidth;
}

std::optional<ChannelTableId> FindTable(std::uint32_t band, std::uint32_t bandwidth) {
    const auto count = std::ranges::count(ChannelPlan, bandwidth, &ChannelSet::bandwidth);
    const auto found = std::ranges::find_if(ChannelPlan, [&](const ChannelSet& set) {
        return set.bandwidth == bandwidth && (set.band == band || count == 1);
    });
    if (found == ChannelPlan.end()) return std::nullopt;
    return static_cast<ChannelTableId>(found - ChannelPlan.begin());
}

bool IsBandSupportedForDevice(ChannelTableId id, std::uint32_t cardType, std::uint32_t hwType) {
    if (id >= ChannelTableCount) return true;
    return RadioFacts::CanTune(hwType, cardType, ChannelPlan[id]);
}

void AddSupportedRows(std::span<const ChannelRow> rows, ChannelTableId id, std::uint32_t band, std::uint32_t bandwidth,
                      const std::function<bool(std::uint32_t channel)>& isSupported, ChannelTables& tables,
                      ChannelFlags& flags) {
    if (rows.empty()) return;
    auto& list = tables[id];
    list.push_back(rows.front());
    for (const ChannelRow& row : rows.subspan(1)) {
        const auto channel = static_cast<std::int32_t>(row.channel);
        const bool supported = isSupported(static_cast<std::uint32_t>(channel));
        auto& widths = flags[{channel, band}];
        if (bandwidth < widths.size()) widths[bandwidth] = supported;
        if (supported) list.push_back(row);
    }
}

std::string FlagsToString(const ChannelFlags& flags) {
    std::string text;
    for (const auto& [key, widths] : flags) {
        const std::string_view band = key.second < RadioFacts::BandCount ? RadioFacts::Bands[key.second].code : "";
        text += "(" + std::to_string(key.first) + "," + std::string(band) + ")";
        for (const bool allowed : widths)
            text += allowed ? ",1" : ",0";
        text += '\n';
    }
    return text;
}

double GetChannelInfoByChannel(double channel, std::uint32_t bandwidth, std::uint32_t band) {
    const std::size_t row = FindRow("TarnWifiFlows::GetChannelInfoByChannel", channel, bandwidth, band);
    return Table(*FindTable(band, bandwidth))[row].frequency;
}

std::int32_t GetChannelIndex(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band) {
    return static_cast<std::int32_t>(FindRow("TarnWifiFlows::GetChannelIndex", channel, bandwidth, band));
}

std::int32_t GetChannelFromIndex(std::int32_t row, std::uint32_t band, std::uint32_t bandwidth) {
    const auto id = FindTable(band, bandwidth);
    if (!id || row < 0 || static_cast<std::size_t>(row) >= Table(*id).size()) return 0;
    return static_cast<std::int32_t>(Table(*id)[static_cast<std::size_t>(row)].channel);
}

std::int32_t GetChannelIndex_802_11(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band) {
    const std::size_t row = FindRow("TarnWifiFlows::GetChannelIndex_802_11", channel, bandwidth, band);
    return static_cast<std::int32_t>(FirstLines[*FindTable(band, bandwidth)] + row);
}

std::optional<ChannelOfLine> GetChannelFromLineNumber(std::int32_t line) {
    if (line < 0 || static_cast<std::size_t>(line) >= AllRows.size()) return std::nullopt;
    const auto place = static_cast<std::size_t>(line);
    const auto behind = std::upper_bound(FirstLines.begin(), FirstLines.end(), place);
    const ChannelSet& set = ChannelPlan[static_cast<std::size_t>(behind - FirstLines.begin()) - 1];
    const auto channel = static_cast<std::int32_t>(AllRows[place].channel);
    if (channel == 0) return std::nullopt;
    return ChannelOfLine{set.band, set.bandwidth, channel};
}

std::string BandwidthEnumToValue(std::uint32_t bandwidth) {
    return bandwidth < RadioFacts::BandwidthCount ? std::string(RadioFacts::Bandwidths[bandwidth].name) : "";
}

std::uint32_t BandwidthValueToEnum(std::int32_t value) {
    return RadioFacts::FindBandwidth(std::to_string(value)).value_or(0);
}

std::uint32_t ConvertChainStringToU32(const std::string& chain) {
    if (chain == "A") return 1;
    if (chain == "B") return 2;
    if (chain == "AB") return 3;
    const std::string message = "Chain " + chain + " is not supported";
    Streams::ThrowLogged("TarnWifiFlows::ConvertChainStringToU32", message);
}

std::string ConvertChainU32ToString(std::uint32_t chain) {
    switch (chain) {
        case 1:
            return "A";
        case 2:
            return "B";
        case 3:
            return "AB";
        default: {
            const std::string message = "Chain " + std::to_string(chain) + " is not supported";
            Streams::ThrowLogged("TarnWifiFlows::ConvertChainU32ToString", message);
        }
    }
}

bool Is2RxChainsCard(std::uint32_t cardType) {
    return RadioFacts::CardOf(cardType).twoChainMask != 0;
}

void GuiToHWAnts(std::uint32_t cardType, std::uint32_t hwType, quayCommand::RxConfig& rxConfig,
                 quayCommand::AdcConfig& adcConfig) {
    static constexpr const char* traceFunctionName = "TarnWifiFlows::GuiToHWAnts";
    if (Is2RxChainsCard(cardType)) {
        if (hwType == UnknownHardware) {
            TRACE(Streams::TraceError,
                  Common::Format("unexpected device type / hardware is not supported(HW ID : ${1})") % hwType);
            throw new Common::Exception(
                "unexpected device type / hardware is not supported (HW ID:" + std::to_string(hwType) + ")");
        }
        rxConfig.antennaMask = RadioFacts::CardOf(cardType).twoChainMask;
        rxConfig.antennaSelection = 3;
        return;
    }
    const RadioFacts::Antenna antenna = RadioFacts::HardwareOf(hwType).antenna;
    const bool onlyA = antenna == RadioFacts::Antenna::OnlyA;
    const bool onlyB = antenna == RadioFacts::Antenna::OnlyB;
    if (!onlyA && !onlyB) return;
    rxConfig.antennaMask = rxConfig.m_currChain = rxConfig.antennaSelection = onlyB ? 2 : 1;
    adcConfig.chainAEnable = onlyA;
    adcConfig.chainBEnable = onlyB;
    adcConfig.chainCEnable = 0;
}

}  // namespace ChannelDatabase
