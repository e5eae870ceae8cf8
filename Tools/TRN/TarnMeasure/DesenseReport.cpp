#include "DesenseReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "OSAL/WholeFile.h"

namespace TarnMeasure {

namespace {

using OrderedJson = nlohmann::ordered_json;

std::string Figure(double value, int digits = 1) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return std::strspn(text, "-0.") == std::strlen(text) && text[0] == '-' ? text + 1 : text;  // no "-0.0"
}

std::string Figure(const std::optional<double>& value) {
    return value ? Figure(*value) : "-";
}

std::string Left(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string Right(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string Place(const DesenseChannel& channel) {
    return channel.band + " GHz channel " + std::to_string(channel.channel);
}

std::string Place(const DesenseLeftOut& channel) {
    return channel.band + " GHz channel " + channel.text;
}

/// The largest of all chains.
std::optional<double> Worst(const DesenseChannel& channel, double DesenseLevel::*figure) {
    std::optional<double> worst;
    for (const DesenseLevel& level : channel.levels)
        if (!worst || !(level.*figure <= *worst)) worst = level.*figure;
    return worst;
}

/// The limit that it was judged by.
std::optional<double> LimitOf(const DesenseChannel& channel) {
    if (!channel.hasLimit) return std::nullopt;
    return channel.judgement.limit_dbm;
}

std::string Escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '&')
            out += "&amp;";
        else if (c == '"')
            out += "&quot;";
        else if (static_cast<unsigned char>(c) >= 0x20)
            out += c;
    }
    return out;
}

/// What a failed or invalid channel has to say.
std::string Why(const DesenseChannel& channel) {
    const Judgement& judged = channel.judgement;
    if (judged.verdict == Verdict::Invalid) return judged.invalid;
    return Figure(judged.level_dbm) + " dBm against a limit of " + Figure(judged.limit_dbm) + " dBm" +
           (judged.frequency_mhz ? " at " + Figure(*judged.frequency_mhz, 3) + " MHz" : "");
}

std::string Cell(const std::string& text, const std::string& more = "") {
    return "<td" + more + ">" + Escaped(text) + "</td>";
}

/// A bar for each channel; the scale begins at 0 dB.
std::string Chart(const DesenseResult& result) {
    double top = 1.0;
    const bool hasIdle = std::ranges::any_of(result.channels, [](const auto& one) { return one.idle_db.has_value(); });
    for (const DesenseChannel& channel : result.channels)
        top = std::max(top, std::max(channel.desense_db.value_or(0), channel.idle_db.value_or(0)));
    std::vector<const DesenseChannel*> order;
    for (const DesenseChannel& channel : result.channels)
        order.push_back(&channel);
    std::ranges::sort(order, {}, [](const DesenseChannel* one) { return std::pair(one->band, one->channel); });
    const double width = 940.0 / static_cast<double>(std::max<std::size_t>(order.size(), 1));
    std::string svg = "<svg viewBox='0 0 1000 240' role='img' aria-label='Desense by channel'>\n";
    const auto bar = [&](double x, double share, double value, const std::string& type, const std::string& title) {
        const double height = std::clamp(value / top, 0.0, 1.0) * 190;
        svg += "<rect class='" + type + "' x='" + Figure(x) + "' y='" + Figure(205 - height) + "' width='" +
               Figure(width * share) + "' height='" + Figure(height) + "'><title>" + Escaped(title) +
               "</title></rect>\n";
    };
    for (std::size_t k = 0; k < order.size(); ++k) {
        const DesenseChannel& one = *order[k];
        const double x = 50 + static_cast<double>(k) * width;
        bar(x, 0.85, one.desense_db.value_or(0), VerdictText(one.judgement.verdict),
            Place(one) + ": " + Figure(one.desense_db) + " dB");
        if (one.desense_db && order.size() < 40)
            svg += "<text x='" + Figure(x) + "' y='" + Figure(200 - std::clamp(*one.desense_db / top, 0.0, 1.0) * 190) +
                   "'>" + Figure(*one.desense_db) + "</text>\n";
        if (one.idle_db)
            bar(x, 0.4, *one.idle_db, "idle", Place(one) + " without load: " + Figure(one.idle_db) + " dB");
        if (k == 0 || order[k - 1]->band != one.band || order.size() < 40)
            svg += "<text x='" + Figure(x) + "' y='225'>" + std::to_string(one.channel) + "</text>\n";
        if (k == 0 || order[k - 1]->band != one.band)
            svg += "<text x='" + Figure(x) + "' y='238'>" + one.band + " GHz</text>\n";
    }
    return svg + "<text x='0' y='20'>" + Figure(top) + " dB</text><text x='0' y='205'>0 dB</text></svg>\n" +
           (hasIdle ? "<p>Dark: without load.</p>\n" : "");
}

std::string Line(const std::vector<double>& bins, double low, double high, const std::string& type) {
    std::string points;
    for (std::size_t k = 0; k < bins.size(); ++k) {
        if (!std::isfinite(bins[k])) continue;
        const double y = 150 - std::clamp((bins[k] - low) / (high - low), 0.0, 1.0) * 140;
        points +=
            Figure(40 + 450.0 * static_cast<double>(k) / static_cast<double>(bins.size())) + "," + Figure(y) + " ";
    }
    return "<polyline class='" + type + "' points='" + points + "'/>";
}

/// A spectrum shows at least so much, for a flat floor to look flat.
constexpr double LeastSpan_db = 10.0;

std::string Spectrum(const DesenseChannel& channel, const DesenseLevel& level, double width_mhz) {
    double low = 1e9, high = -1e9;
    for (const auto* bins : {&level.average, &level.maximum})
        for (const double value : *bins)
            if (std::isfinite(value)) low = std::min(low, value), high = std::max(high, value);
    if (!(low < high)) return {};
    const double room = std::max(0.0, LeastSpan_db - (high - low)) / 2;
    low -= room, high += room;
    return "<figure><figcaption>" + Escaped(Place(channel) + ", chain " + level.chain) +
           "</figcaption><svg viewBox='0 0 500 175'>" + Line(level.maximum, low, high, "maximum") +
           Line(level.average, low, high, "average") + "<text x='0' y='15'>" + Figure(high) +
           "</text><text x='0' y='150'>" + Figure(low) + "</text><text x='40' y='170'>" +
           Figure(channel.centre_mhz - width_mhz / 2) + " MHz</text><text x='430' y='170'>" +
           Figure(channel.centre_mhz + width_mhz / 2) + "</text></svg></figure>\n";
}

constexpr const char* Style =
    "body{font:14px sans-serif;margin:2em;max-width:70em}table{border-collapse:collapse}td,th{padding:2px 10px;"
    "border-bottom:1px solid #ccc;text-align:right}td.t,th.t{text-align:left}"
    "td{white-space:nowrap}td.t+td.t,td.t:last-child{white-space:normal;overflow-wrap:anywhere}svg{width:100%}svg "
    "text{font-size:11px}"
    "figure{display:inline-block;width:46%;margin:1%;break-inside:avoid}tr{break-inside:avoid}"
    ".PASS{fill:#2a7d3f;color:#2a7d3f}.MARGIN{fill:#b07a00;color:#b07a00}.FAIL{fill:#b3261e;color:#b3261e}"
    ".INVALID{fill:#777;color:#777}.idle{fill:#333;opacity:.6}polyline{fill:none;stroke:#1f5fa8}"
    "polyline.maximum{stroke:#d08a2e}@media print{body{margin:0;font-size:12px}h2{break-after:avoid}}";

std::string Rows(const DesenseResult& result) {
    std::string html;
    for (const DesenseChannel& one : result.channels) {
        const std::string verdict = VerdictText(one.judgement.verdict);
        std::string why = one.judgement.verdict == Verdict::Invalid ? one.judgement.invalid : "";
        if (why.empty() && one.judgement.frequency_mhz)
            why = Figure(one.judgement.level_dbm) + " dBm at " + Figure(*one.judgement.frequency_mhz, 3) + " MHz";
        html += "<tr>" + Cell(Place(one), " class='t'") + Cell(Figure(Worst(one, &DesenseLevel::average_dbm))) +
                Cell(Figure(Worst(one, &DesenseLevel::peak_dbm))) + Cell(Figure(LimitOf(one))) +
                Cell(Figure(one.desense_db)) + Cell(Figure(one.idle_db)) + Cell(Figure(one.Rise())) +
                Cell(verdict, " class='" + verdict + "'") + Cell(why, " class='t'") + "</tr>\n";
    }
    for (const DesenseLeftOut& one : result.leftOut)
        html += "<tr>" + Cell(Place(one), " class='t'") + Cell("left out", " colspan='7' class='INVALID'") +
                Cell(one.reason, " class='t'") + "</tr>\n";
    return html;
}

std::string SpurRows(const DesenseResult& result) {
    std::string html;
    for (const DesenseChannel& one : result.channels)
        for (const DesenseSpur& spur : one.spurs)
            html += "<tr>" + Cell(Place(one), " class='t'") + Cell(spur.chain) + Cell(Figure(spur.frequency_mhz, 4)) +
                    Cell(Figure(spur.baseband_mhz, 4)) + Cell(Figure(spur.level_dbm)) + "</tr>\n";
    return html;
}

OrderedJson ChannelJson(const DesenseChannel& one) {
    const auto orNull = [](const std::optional<double>& value) {
        return value ? OrderedJson(*value) : OrderedJson(nullptr);
    };
    OrderedJson levels = OrderedJson::array(), spurs = OrderedJson::array();
    for (const DesenseLevel& level : one.levels)
        levels.push_back({{"chain", level.chain}, {"average_dbm", level.average_dbm}, {"peak_dbm", level.peak_dbm}});
    for (const DesenseSpur& spur : one.spurs)
        spurs.push_back({{"chain", spur.chain},
                         {"frequency_mhz", spur.frequency_mhz},
                         {"baseband_mhz", spur.baseband_mhz},
                         {"level_dbm", spur.level_dbm}});
    return {{"band", one.band},
            {"channel", one.channel},
            {"centre_mhz", one.centre_mhz},
            {"verdict", VerdictText(one.judgement.verdict)},
            {"invalid", one.judgement.invalid},
            {"limit_dbm", orNull(LimitOf(one))},
            {"desense_db", orNull(one.desense_db)},
            {"idle_desense_db", orNull(one.idle_db)},
            {"rise_db", orNull(one.Rise())},
            {"levels", levels},
            {"spurs", spurs}};
}

}  // namespace

std::string DesenseTable(const DesenseResult& result) {
    std::string text = Left("channel", 22) + Right("average", 9) + Right("peak", 9) + Right("limit", 9) +
                       Right("desense", 9) + Right("idle", 7) + Right("rise", 7) + "  verdict\n";
    for (const DesenseChannel& one : result.channels) {
        text += Left(Place(one), 22) + Right(Figure(Worst(one, &DesenseLevel::average_dbm)), 9) +
                Right(Figure(Worst(one, &DesenseLevel::peak_dbm)), 9) + Right(Figure(LimitOf(one)), 9) +
                Right(Figure(one.desense_db), 9) + Right(Figure(one.idle_db), 7) + Right(Figure(one.Rise()), 7) + "  " +
                VerdictText(one.judgement.verdict);
        if (one.judgement.verdict == Verdict::Invalid) text += ": " + one.judgement.invalid;
        text += '\n';
        for (const DesenseSpur& spur : one.spurs)
            text += "  spur at " + Figure(spur.frequency_mhz, 4) + " MHz (" + Figure(spur.baseband_mhz, 4) +
                    " MHz from the centre), chain " + spur.chain + ", " + Figure(spur.level_dbm) + " dBm\n";
    }
    for (const DesenseLeftOut& one : result.leftOut)
        text += Left(Place(one), 22) + "left out: " + one.reason + "\n";
    return text + "verdict: " + VerdictText(result.Gravest()) +
           "   (levels in dBm a resolution bandwidth, desense and rise in dB)\n";
}

std::string DesenseChannelJson(const DesenseChannel& channel) {
    return ChannelJson(channel).dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

std::string DesenseJson(const DesenseResult& result, const DesenseOrigin& origin) {
    OrderedJson json{{"verdict", VerdictText(result.Gravest())},
                     {"interrupted", result.interrupted},
                     {"trouble", result.trouble},
                     {"utc", origin.utc},
                     {"version", origin.version},
                     {"adapter", origin.adapter},
                     {"air", origin.air},
                     {"platform", origin.platform},
                     {"command", origin.command},
                     {"bandwidth_mhz", result.bandwidth},
                     {"rbw_khz", result.rbw_khz},
                     {"chain_mode", result.chainMode},
                     {"iterations", result.iterations},
                     {"duration_s", result.duration_s},
                     {"channels", OrderedJson::array()},
                     {"left_out", OrderedJson::array()}};
    for (const DesenseLeftOut& one : result.leftOut)
        json["left_out"].push_back({{"band", one.band},
                                    {"channel", one.channel > 0 ? OrderedJson(one.channel) : OrderedJson(one.text)},
                                    {"reason", one.reason}});
    for (const DesenseChannel& one : result.channels)
        json["channels"].push_back(ChannelJson(one));
    return json.dump(2, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

std::string DesenseJunit(const DesenseResult& result, const DesenseOrigin& origin) {
    std::size_t failures = 0, errors = 0;
    std::string cases;
    for (const DesenseChannel& one : result.channels) {
        cases += "    <testcase classname=\"desense\" name=\"" + Escaped(Place(one)) + "\"";
        const Verdict verdict = one.judgement.verdict;
        failures += verdict == Verdict::Fail;
        errors += verdict == Verdict::Invalid;
        if (verdict == Verdict::Fail)
            cases += "><failure message=\"" + Escaped(Why(one)) + "\"/></testcase>\n";
        else if (verdict == Verdict::Invalid)
            cases += "><error message=\"" + Escaped(Why(one)) + "\"/></testcase>\n";
        else
            cases += "/>\n";
    }
    for (const DesenseLeftOut& one : result.leftOut)
        cases += "    <testcase classname=\"desense\" name=\"" + Escaped(Place(one)) + "\"><skipped message=\"" +
                 Escaped(one.reason) + "\"/></testcase>\n";
    std::string counts;
    for (const auto& [name, count] : {std::pair{"tests", result.channels.size() + result.leftOut.size()},
                                      {"failures", failures},
                                      {"errors", errors},
                                      {"skipped", result.leftOut.size()}})
        counts += std::string(name) + "=\"" + std::to_string(count) + "\" ";
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n  <testsuite name=\"desense\" " + counts +
           "time=\"" + Figure(result.duration_s, 3) + "\" timestamp=\"" + Escaped(origin.utc) + "\">\n" + cases +
           "  </testsuite>\n</testsuites>\n";
}

std::string DesenseHtml(const DesenseResult& result, const DesenseOrigin& origin) {
    const std::string verdict = VerdictText(result.Gravest());
    std::string html =
        "<!doctype html><html lang='en'><head><meta charset='utf-8'><title>Burn-in desense test</title><style>" +
        std::string(Style) + "</style></head><body>\n<h1>Burn-in desense test: <span class='" + verdict + "'>" +
        verdict + "</span></h1>\n";
    if (result.interrupted) html += "<p>Interrupted: what was measured until then.</p>\n";
    if (!result.trouble.empty()) html += "<p>" + Escaped(result.trouble) + "</p>\n";
    html += "<h2>Desense by channel</h2>\n" + Chart(result) +
            "<h2>Channels, worst first</h2>\n<table><tr><th class='t'>channel<th>average dBm<th>peak dBm<th>limit dBm"
            "<th>desense dB<th>idle dB<th>rise dB<th>verdict<th class='t'>why</tr>\n" +
            Rows(result) + "</table>\n";
    if (const std::string spurs = SpurRows(result); !spurs.empty())
        html +=
            "<h2>Spurs</h2>\n<table><tr><th class='t'>channel<th>chain<th>frequency MHz<th>base band MHz<th>level dBm"
            "</tr>\n" +
            spurs + "</table>\n";
    html += "<h2>Set-up</h2>\n<table>\n";
    std::vector<std::pair<std::string, std::string>> facts{
        {"begin (UTC)", origin.utc},
        {"took", Figure(result.duration_s, 0) + " s"},
        {"Tarn", origin.version},
        {"adapter", origin.adapter},
        {"air", origin.air},
        {"computer", origin.platform},
        {"command", origin.command},
        {"channel width", result.bandwidth + " MHz"},
        {"resolution bandwidth", result.rbw_khz + " kHz"},
        {"chain mode", result.chainMode},
        {"sweeps a channel and chain", std::to_string(result.iterations)}};
    facts.insert(facts.end(), result.setUp.begin(), result.setUp.end());
    for (const auto& [name, value] : facts)
        html += "<tr>" + Cell(name, " class='t'") + Cell(value, " class='t'") + "</tr>\n";
    html += "</table>\n<h2>Spectra in dBm: average, and the maximum above it</h2>\n";
    const double width_mhz = std::strtod(result.bandwidth.c_str(), nullptr);
    for (const DesenseChannel& one : result.channels)
        for (const DesenseLevel& level : one.levels)
            html += Spectrum(one, level, width_mhz);
    return html + "</body></html>\n";
}

std::vector<std::string> WriteDesenseReports(const DesenseResult& result, const DesenseOrigin& origin,
                                             const std::string& folder) {
    std::vector<std::string> failures;
    for (const auto& [name, text] : {std::pair{"result.json", DesenseJson(result, origin)},
                                     {"junit.xml", DesenseJunit(result, origin)},
                                     {"report.html", DesenseHtml(result, origin)}})
        if (const auto written = OSAL::WriteWholeFile(std::filesystem::path(folder) / name, text); !written)
            failures.push_back(written.Reason());
    return failures;
}

}  // namespace TarnMeasure
