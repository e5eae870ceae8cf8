#include "Report.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numeric>

#include "PlainText.h"

namespace TarnMeasure {
namespace {

using OrderedJson = nlohmann::ordered_json;

std::string Padded(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

std::string Line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
    std::string line;
    for (std::size_t c = 0; c < cells.size(); ++c)
        line += (c ? "  " : "") + Padded(cells[c], widths[c]);
    return line + "\n";
}

std::string Aligned(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t c = 0; c < row.size(); ++c)
            widths[c] = std::max(widths[c], row[c].size());
    }
    std::string text;
    for (const auto& row : rows)
        text += Line(row, widths);
    return text;
}

double DensityDbm(double power_dbm, const Request& request) {
    return power_dbm - 10 * std::log10(WidthMhz(request.bandwidth));
}

/// "50", or "3/50" where a channel has fewer than asked for.
std::string SweepsText(const ChannelResult& channel, const Request& request) {
    const std::string text = std::to_string(channel.sweeps);
    return channel.sweeps < request.sweeps ? text + "/" + std::to_string(request.sweeps) : text;
}

std::vector<std::string> PowerRow(const ChannelResult& channel, const ChainResult& chain, const Request& request) {
    std::vector<std::string> row = {std::to_string(channel.channel), ShortText(channel.centre_mhz), chain.chain};
    if (IsMeasured(channel)) {
        for (const double power : {chain.power_dbm, chain.lowest_dbm, chain.highest_dbm})
            row.push_back(FixedText(power, 1));
        row.push_back(FixedText(DensityDbm(chain.power_dbm, request), 1));
    } else {
        row.resize(row.size() + 4, "-");
    }
    row.push_back(SweepsText(channel, request));
    if (!request.limits) return row;
    row.push_back(chain.judgement ? FixedText(chain.judgement->limit_dbm, 1) : "-");
    row.push_back(chain.judgement ? VerdictText(chain.judgement->verdict) : "-");
    return row;
}

std::string PowerTable(const Result& result, bool narrow) {
    const Request& request = result.request;
    std::vector<std::vector<std::string>> rows;
    rows.push_back({"channel", "MHz", "chain", "power", "lowest", "highest", "density", "sweeps"});
    const std::string inChannel = "dBm/" + request.bandwidth + "MHz";
    rows.push_back({"", "", "", inChannel, inChannel, inChannel, "dBm/MHz", ""});
    if (request.limits) {
        rows[0].insert(rows[0].end(), {"limit", "verdict"});
        rows[1].insert(rows[1].end(),
                       {request.limits->IsLine() ? "dBm/" + ShortText(request.rbw_khz) + "kHz" : inChannel, ""});
    }
    for (const std::size_t index : WorstFirst(result))
        for (const ChainResult& chain : result.channels[index].chains)
            rows.push_back(PowerRow(result.channels[index], chain, request));
    if (narrow)
        for (auto& row : rows)
            row = request.limits ? std::vector{row[0], row[2], row[3], row[8], row[9]}
                                 : std::vector{row[0], row[2], row[3], row[5]};
    return Aligned(rows);
}

std::string PeakSource(const Request& request) {
    return request.maxHold ? "max hold" : request.average ? "average" : "last sweep";
}

std::string PeakTable(const Result& result) {
    std::vector<std::vector<std::string>> rows;
    for (const std::size_t index : WorstFirst(result)) {
        const ChannelResult& channel = result.channels[index];
        for (const ChainResult& chain : channel.chains)
            for (const Peak& peak : chain.peaks)
                rows.push_back({std::to_string(channel.channel), chain.chain, FixedText(peak.frequency_mhz, 3),
                                FixedText(peak.power_dbm, 1)});
    }
    if (rows.empty())
        return result.request.peaks > 0
                   ? "No peak of the " + PeakSource(result.request) + " stands " +
                         ShortText(result.request.peakExcursion_db) + " dB above its surroundings.\n"
                   : "";
    rows.insert(rows.begin(), {{"channel", "chain", "MHz", "power"},
                               {"", "", "", "dBm/" + ShortText(result.request.rbw_khz) + "kHz"}});
    return "Peaks of the " + PeakSource(result.request) + "\n" + Aligned(rows);
}

OrderedJson Graph(const std::vector<double>& values) {
    OrderedJson array = OrderedJson::array();
    for (const double value : values) {  // JSON knows no infinity
        if (std::isfinite(value))
            array.push_back(value);
        else
            array.push_back(nullptr);
    }
    return array;
}

/// A level, or null where there is none.
OrderedJson Level(double value) {
    return std::isfinite(value) ? OrderedJson(value) : OrderedJson(nullptr);
}

OrderedJson JudgementJson(const Judgement& judgement) {
    OrderedJson json = {{"verdict", VerdictText(judgement.verdict)},
                        {"level_dbm", Level(judgement.level_dbm)},
                        {"limit_dbm", judgement.limit_dbm},
                        {"excess_db", Level(judgement.Excess())}};
    if (judgement.frequency_mhz) json["frequency_mhz"] = *judgement.frequency_mhz;
    if (!judgement.invalid.empty()) json["invalid"] = judgement.invalid;
    return json;
}

OrderedJson ChainJson(const ChannelResult& channel, const ChainResult& chain, const Request& request) {
    OrderedJson json = {{"chain", chain.chain}};
    if (IsMeasured(channel)) {
        json.update({{"power_dbm", Level(chain.power_dbm)},
                     {"lowest_dbm", Level(chain.lowest_dbm)},
                     {"highest_dbm", Level(chain.highest_dbm)},
                     {"density_dbm_per_mhz", Level(DensityDbm(chain.power_dbm, request))},
                     {"overloaded", chain.overloadedSweeps > 0},
                     {"overloaded_sweeps", chain.overloadedSweeps}});
        OrderedJson peaks = OrderedJson::array();
        for (const Peak& peak : chain.peaks)
            peaks.push_back({{"frequency_mhz", peak.frequency_mhz}, {"power_dbm", peak.power_dbm}});
        json["peaks"] = peaks;
        json["spectrum_dbm"] = Graph(chain.spectrum);
        if (!chain.maxHold.empty()) json["max_hold_dbm"] = Graph(chain.maxHold);
        if (!chain.average.empty()) json["average_dbm"] = Graph(chain.average);
    }
    if (chain.judgement) json["limit"] = JudgementJson(*chain.judgement);
    return json;
}

OrderedJson ChannelJson(const ChannelResult& channel, const Request& request) {
    OrderedJson json = {{"channel", channel.channel},
                        {"centre_mhz", channel.centre_mhz},
                        {"measured", IsMeasured(channel)},
                        {"sweeps", channel.sweeps},
                        {"sweeps_asked", request.sweeps}};
    if (!channel.invalid.empty()) json["trouble"] = channel.invalid;
    if (IsMeasured(channel)) {
        const std::size_t bins = channel.chains[0].spectrum.size();
        json["sample_rate_mhz"] = channel.sampleRate_mhz;
        json["first_bin_mhz"] = BinMhz(channel, 0, bins);
        json["bin_step_mhz"] = request.rbw_khz / 1000.0;
    }
    json["chains"] = OrderedJson::array();
    for (const ChainResult& chain : channel.chains)
        json["chains"].push_back(ChainJson(channel, chain, request));
    return json;
}

std::string Field(const std::vector<double>& graph, std::size_t bin) {
    return bin < graph.size() ? ShortText(graph[bin]) : std::string();
}

}  // namespace

std::string ShortText(double value) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

std::string FixedText(double value, int decimals) {
    char text[400];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals).ptr;
    return std::string(text, end);
}

bool IsMeasured(const ChannelResult& channel) {
    return channel.sweeps > 0 && channel.invalid.empty();
}

double WorstPowerDbm(const ChannelResult& channel) {
    double worst = -std::numeric_limits<double>::infinity();
    if (!IsMeasured(channel)) return worst;
    for (const ChainResult& chain : channel.chains)
        worst = std::max(worst, chain.power_dbm);
    return worst;
}

std::vector<std::size_t> WorstFirst(const Result& result) {
    std::vector<std::size_t> order(result.channels.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) {
        return WorstPowerDbm(result.channels[a]) > WorstPowerDbm(result.channels[b]);
    });
    return order;
}

std::string SettingsText(const Result& result) {
    const Request& request = result.request;
    std::string text = "Band " + request.band + " GHz, ";
    if (result.channels.size() == 1)
        text += "channel " + std::to_string(result.channels[0].channel);
    else
        text += std::to_string(result.channels.size()) + " channels";
    text +=
        ", " + request.bandwidth + " MHz, chain " + request.chain + ", RBW " + ShortText(request.rbw_khz) + " kHz, ";
    int fewest = request.sweeps;
    for (const ChannelResult& channel : result.channels)
        fewest = std::min(fewest, channel.sweeps);
    if (fewest < request.sweeps) text += std::to_string(fewest) + " of ";
    return text + std::to_string(request.sweeps) + (request.sweeps == 1 ? " sweep" : " sweeps");
}

std::vector<std::string> Warnings(const Result& result) {
    std::vector<std::string> notes;
    for (const ChannelResult& channel : result.channels) {
        const std::string name = "channel " + std::to_string(channel.channel);
        if (!channel.invalid.empty()) notes.push_back(name + ": not measured: " + Printable(channel.invalid));
        for (const ChainResult& chain : channel.chains)
            if (chain.overloadedSweeps > 0)
                notes.push_back(name + " chain " + chain.chain + ": the converter was overloaded in " +
                                std::to_string(chain.overloadedSweeps) + " of " + std::to_string(channel.sweeps) +
                                " sweeps; levels read low; raise -internal_gain (a higher index is less gain)");
    }
    return notes;
}

std::vector<std::string> ProvenanceLines(const Result& result) {
    const Provenance& source = result.provenance;
    std::vector<std::string> lines;
    const std::pair<const char*, const std::string*> facts[] = {
        {"time", &source.utc}, {"version", &source.version}, {"adapter", &source.adapter},
        {"air", &source.air},  {"gain", &source.gain},       {"command", &source.command}};
    for (const auto& [name, text] : facts)
        if (!text->empty()) lines.push_back(std::string(name) + ": " + Printable(*text));
    return lines;
}

std::string TableText(const Result& result, std::size_t columns) {
    if (result.channels.empty()) return "";
    std::string text = SettingsText(result) + (result.channels.size() > 1 ? ", strongest first\n\n" : "\n\n") +
                       PowerTable(result, columns > 0 && columns < 80);
    for (const std::string& note : Warnings(result))
        text += note + "\n";
    if (const std::string peaks = PeakTable(result); !peaks.empty()) text += "\n" + peaks;
    return text;
}

std::string CsvText(const Result& result) {
    const std::string unit = " [dBm/" + ShortText(result.request.rbw_khz) + "kHz]";
    std::string text;
    for (const std::string& line : ProvenanceLines(result))
        text += "# " + line + "\n";
    text += "# settings: " + SettingsText(result) + "\n";
    for (const std::string& note : Warnings(result))
        text += "# " + note + "\n";
    text += "Channel,Chain,Frequency [MHz],Spectrum" + unit + ",Max Hold" + unit + ",Average" + unit + "\n";
    for (const ChannelResult& channel : result.channels) {
        if (!IsMeasured(channel)) continue;
        for (const ChainResult& chain : channel.chains)
            for (std::size_t k = 0; k < chain.spectrum.size(); ++k)
                text += std::to_string(channel.channel) + "," + chain.chain + "," +
                        ShortText(BinMhz(channel, k, chain.spectrum.size())) + "," + ShortText(chain.spectrum[k]) +
                        "," + Field(chain.maxHold, k) + "," + Field(chain.average, k) + "\n";
    }
    return text;
}

std::string JsonText(const Result& result, int indent) {
    const Request& request = result.request;
    const Provenance& source = result.provenance;
    OrderedJson json = {{"utc", source.utc},
                        {"version", source.version},
                        {"adapter", source.adapter},
                        {"air", source.air},
                        {"gain", source.gain},
                        {"command", source.command},
                        {"settings",
                         {{"band_ghz", request.band},
                          {"channels", request.channels},
                          {"bandwidth_mhz", WidthMhz(request.bandwidth)},
                          {"chain", request.chain},
                          {"rbw_khz", request.rbw_khz},
                          {"sweeps", request.sweeps},
                          {"max_hold", request.maxHold},
                          {"average", request.average},
                          {"peaks", request.peaks},
                          {"peaks_of", PeakSource(request)},
                          {"peak_excursion_db", request.peakExcursion_db},
                          {"margin_db", request.margin_db},
                          {"keys", request.setup}}},
                        {"units",
                         {{"power_dbm", "dBm in the channel, linear mean over the sweeps"},
                          {"graphs", "dBm in one RBW, lowest frequency first; the average is a mean of power"},
                          {"peaks", "dBm in one RBW"}}},
                        {"complete", !result.interrupted && !result.trouble && !result.HasInvalid()}};
    if (result.trouble)
        json["trouble"] = *result.trouble;
    else if (result.interrupted)
        json["trouble"] = "interrupted";
    if (const auto worst = result.Worst()) json["verdict"] = VerdictText(*worst);
    json["channels"] = OrderedJson::array();
    for (const ChannelResult& channel : result.channels)
        json["channels"].push_back(ChannelJson(channel, request));
    return json.dump(indent, ' ', false, OrderedJson::error_handler_t::replace);
}

}  // namespace TarnMeasure
