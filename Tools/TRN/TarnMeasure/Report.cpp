#include "Report.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numeric>

namespace TarnMeasure {
namespace {

using Json = nlohmann::ordered_json;

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

std::string PowerTable(const Result& result, bool narrow) {
    const Request& request = result.request;
    std::vector<std::vector<std::string>> rows;
    rows.push_back({"channel", "MHz", "chain", "power", "lowest", "highest", "density", "sweeps"});
    const std::string inChannel = "dBm/" + request.bandwidth + "MHz";
    rows.push_back({"", "", "", inChannel, inChannel, inChannel, "dBm/MHz", ""});
    for (const std::size_t index : WorstFirst(result)) {
        const ChannelResult& channel = result.channels[index];
        for (const ChainResult& chain : channel.chains)
            rows.push_back({std::to_string(channel.channel), ShortText(channel.centre_mhz), chain.chain,
                            FixedText(chain.power_dbm, 1), FixedText(chain.lowest_dbm, 1),
                            FixedText(chain.highest_dbm, 1), FixedText(DensityDbm(chain.power_dbm, request), 1),
                            std::to_string(channel.sweeps)});
    }
    if (narrow)
        for (auto& row : rows)
            row = {row[0], row[2], row[3], row[5]};
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
    if (rows.empty()) return result.request.peaks > 0 ? "No peaks stand above their surroundings.\n" : "";
    rows.insert(rows.begin(), {{"channel", "chain", "MHz", "power"},
                               {"", "", "", "dBm/" + ShortText(result.request.rbw_khz) + "kHz"}});
    return "Peaks of the " + PeakSource(result.request) + "\n" + Aligned(rows);
}

Json Graph(const std::vector<double>& values) {
    Json array = Json::array();
    for (const double value : values) {  // JSON knows no infinity
        if (std::isfinite(value))
            array.push_back(value);
        else
            array.push_back(nullptr);
    }
    return array;
}

Json ChainJson(const ChainResult& chain, const Request& request) {
    Json json = {{"chain", chain.chain},
                 {"power_dbm", chain.power_dbm},
                 {"lowest_dbm", chain.lowest_dbm},
                 {"highest_dbm", chain.highest_dbm},
                 {"density_dbm_per_mhz", DensityDbm(chain.power_dbm, request)},
                 {"overloaded", chain.overloaded}};
    Json peaks = Json::array();
    for (const Peak& peak : chain.peaks)
        peaks.push_back({{"frequency_mhz", peak.frequency_mhz}, {"power_dbm", peak.power_dbm}});
    json["peaks"] = peaks;
    json["spectrum_dbm"] = Graph(chain.spectrum);
    if (!chain.maxHold.empty()) json["max_hold_dbm"] = Graph(chain.maxHold);
    if (!chain.average.empty()) json["average_dbm"] = Graph(chain.average);
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

double BinMhz(const ChannelResult& channel, std::size_t bin, std::size_t bins) {
    const double step = channel.sampleRate_mhz / static_cast<double>(bins);
    const std::size_t middle = bins / 2;
    return channel.centre_mhz + (static_cast<double>(bin) - static_cast<double>(middle)) * step;
}

double WorstPowerDbm(const ChannelResult& channel) {
    double worst = -std::numeric_limits<double>::infinity();
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
    text += ", " + request.bandwidth + " MHz, chain " + request.chain + ", RBW " + ShortText(request.rbw_khz) +
            " kHz, " + std::to_string(request.sweeps) + (request.sweeps == 1 ? " sweep" : " sweeps");
    return text;
}

std::vector<std::string> OverloadNotes(const Result& result) {
    std::vector<std::string> notes;
    for (const ChannelResult& channel : result.channels)
        for (const ChainResult& chain : channel.chains)
            if (chain.overloaded)
                notes.push_back("channel " + std::to_string(channel.channel) + " chain " + chain.chain +
                                ": the converter is overloaded; levels read low; raise -internal_gain (a higher index "
                                "is less gain)");
    return notes;
}

std::string TableText(const Result& result, std::size_t columns) {
    if (result.channels.empty()) return "";
    std::string text = SettingsText(result) + (result.channels.size() > 1 ? ", strongest first\n\n" : "\n\n") +
                       PowerTable(result, columns > 0 && columns < 80);
    for (const std::string& note : OverloadNotes(result))
        text += note + "\n";
    if (const std::string peaks = PeakTable(result); !peaks.empty()) text += "\n" + peaks;
    if (result.request.bandwidth == "320" && result.request.peaks > 1)
        text += "At 320 MHz the search gives one peak at the most, the strongest bin.\n";
    return text;
}

std::string CsvText(const Result& result) {
    const std::string unit = " [dBm/" + ShortText(result.request.rbw_khz) + "kHz]";
    std::string text = "Channel,Chain,Frequency [MHz],Spectrum" + unit + ",Max Hold" + unit + ",Average" + unit + "\n";
    for (const ChannelResult& channel : result.channels)
        for (const ChainResult& chain : channel.chains)
            for (std::size_t k = 0; k < chain.spectrum.size(); ++k)
                text += std::to_string(channel.channel) + "," + chain.chain + "," +
                        ShortText(BinMhz(channel, k, chain.spectrum.size())) + "," + ShortText(chain.spectrum[k]) +
                        "," + Field(chain.maxHold, k) + "," + Field(chain.average, k) + "\n";
    return text;
}

std::string JsonText(const Result& result, int indent) {
    const Request& request = result.request;
    Json json = {{"settings",
                  {{"band_ghz", request.band},
                   {"bandwidth_mhz", WidthMhz(request.bandwidth)},
                   {"chain", request.chain},
                   {"rbw_khz", request.rbw_khz},
                   {"sweeps", request.sweeps},
                   {"max_hold", request.maxHold},
                   {"average", request.average},
                   {"peaks_of", PeakSource(request)},
                   {"peak_window_bins", request.peakWindow}}},
                 {"units",
                  {{"power_dbm", "dBm in the channel, linear mean over the sweeps"},
                   {"graphs", "dBm in one RBW, lowest frequency first"},
                   {"peaks", "dBm in one RBW"}}},
                 {"complete", !result.interrupted && !result.trouble}};
    if (result.trouble)
        json["trouble"] = *result.trouble;
    else if (result.interrupted)
        json["trouble"] = "interrupted";
    Json channels = Json::array();
    for (const ChannelResult& channel : result.channels) {
        Json chains = Json::array();
        for (const ChainResult& chain : channel.chains)
            chains.push_back(ChainJson(chain, request));
        const std::size_t bins = channel.chains[0].spectrum.size();
        channels.push_back({{"channel", channel.channel},
                            {"centre_mhz", channel.centre_mhz},
                            {"sample_rate_mhz", channel.sampleRate_mhz},
                            {"first_bin_mhz", BinMhz(channel, 0, bins)},
                            {"bin_step_mhz", request.rbw_khz / 1000.0},
                            {"sweeps", channel.sweeps},
                            {"chains", chains}});
    }
    json["channels"] = channels;
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace TarnMeasure
