#include "Device/ChannelDatabase.h"

#include <algorithm>

#include "Exceptions.h"
#include "Format.h"
#include "HardwareTypes.h"
#include "Streams/Trace.h"

namespace ChannelDatabase {

namespace {

/// The channels first, first + step, ... up to and with last.
struct Run {
    std::int32_t first;
    std::int32_t last;
    std::int32_t step;
};

struct TableRule {
    std::uint32_t band;
    std::uint32_t bandwidth;
    std::array<Run, 2> runs;
};

constexpr Run NoRun{1, 0, 1};
constexpr std::array<TableRule, ChannelTableCount> Rules{{
    {0, 0, {{{1, 14, 1}, NoRun}}},
    {0, 1, {{{3, 11, 1}, NoRun}}},
    {1, 0, {{{36, 144, 4}, {149, 181, 4}}}},
    {1, 1, {{{38, 142, 8}, {151, 175, 8}}}},
    {1, 2, {{{42, 138, 16}, {155, 171, 16}}}},
    {1, 3, {{{50, 114, 32}, {163, 163, 1}}}},
    {2, 0, {{{1, 233, 4}, NoRun}}},
    {2, 1, {{{3, 227, 8}, NoRun}}},
    {2, 2, {{{7, 215, 16}, NoRun}}},
    {2, 3, {{{15, 207, 32}, NoRun}}},
    {2, 4, {{{31, 191, 32}, NoRun}}},
}};

constexpr std::size_t RowCount(const TableRule& rule) {
    std::size_t count = 1;  // the placeholder
    for (const Run& run : rule.runs)
        if (run.last >= run.first) count += static_cast<std::size_t>((run.last - run.first) / run.step) + 1;
    return count;
}

/// Line number of each table's row 0, and at last the number of all rows.
constexpr std::array<std::size_t, ChannelTableCount + 1> FirstLines = [] {
    std::array<std::size_t, ChannelTableCount + 1> lines{};
    for (std::size_t id = 0; id < ChannelTableCount; ++id)
        lines[id + 1] = lines[id] + RowCount(Rules[id]);
    return lines;
}();

/// Centre frequency in MHz by the channel plan of the band.
constexpr double Frequency(std::uint32_t band, std::int32_t channel) {
    if (band == 0 && channel == 14) return 2484.0;
    constexpr std::array<double, 3> Starts{2407.0, 5000.0, 5950.0};
    return Starts[band] + 5.0 * channel;
}

/// All tables, one behind the other: a row's place is its line number.
constexpr auto AllRows = [] {
    std::array<ChannelRow, FirstLines[ChannelTableCount]> rows{};
    std::size_t line = 0;
    for (const TableRule& rule : Rules) {
        ++line;  // the placeholder stays (0, 0)
        for (const Run& run : rule.runs)
            for (std::int32_t channel = run.first; channel <= run.last; channel += run.step)
                rows[line++] = {static_cast<double>(channel), Frequency(rule.band, channel)};
    }
    return rows;
}();

constexpr std::array<const char*, BandwidthCount> WidthTexts{"20", "40", "80", "160", "320"};
constexpr std::array<const char*, 3> BandNames{"LB", "HB", "UHB"};

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
    return id < ChannelTableCount ? Rules[id].band : 0;
}

std::uint32_t BandwidthOf(ChannelTableId id) {
    return id < ChannelTableCount ? Rules[id].bandwidth : UnknownBandwidth;
}

std::optional<ChannelTableId> FindTable(std::uint32_t band, std::uint32_t bandwidth) {
    if (bandwidth == Rules[UltraHighBand320].bandwidth) return UltraHighBand320;
    const auto found = std::find_if(Rules.begin(), Rules.end(), [&](const TableRule& rule) {
        return rule.band == band && rule.bandwidth == bandwidth;
    });
    if (found == Rules.end()) return std::nullopt;
    return static_cast<ChannelTableId>(found - Rules.begin());
}

bool IsBandSupportedForDevice(ChannelTableId id, std::uint32_t cardType, std::uint32_t hwType) {
    if (id >= ChannelTableCount) return true;
    return RadioFacts::CanTune(hwType, cardType, {Rules[id].band, Rules[id].bandwidth, {}});
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
        const char* band = key.second < BandNames.size() ? BandNames[key.second] : "";
        text += "(" + std::to_string(key.first) + "," + band + ")";
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
    const auto& rule = Rules[static_cast<std::size_t>(behind - FirstLines.begin()) - 1];
    const auto channel = static_cast<std::int32_t>(AllRows[place].channel);
    if (channel == 0) return std::nullopt;
    return ChannelOfLine{rule.band, rule.bandwidth, channel};
}

std::string BandwidthEnumToValue(std::uint32_t bandwidth) {
    return bandwidth < BandwidthCount ? WidthTexts[bandwidth] : "";
}

std::uint32_t BandwidthValueToEnum(std::int32_t value) {
    const auto found = std::find(WidthTexts.begin(), WidthTexts.end(), std::to_string(value));
    return found == WidthTexts.end() ? 0 : static_cast<std::uint32_t>(found - WidthTexts.begin());
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
