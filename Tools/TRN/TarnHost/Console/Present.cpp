#include "Console/Present.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <sstream>
#include <vector>

#include "CmdLine/CmdLine.h"
#include "KeyTable.h"

namespace TarnHost {
namespace {

using Numbers = std::vector<double>;

/// The numbers of each line; nothing when anything else stands in the text.
std::vector<Numbers> NumberLines(const std::string& text) {
    std::vector<Numbers> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        Numbers& numbers = lines.emplace_back();
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            double value = 0;
            const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
            if (error != std::errc() || end != word.data() + word.size()) return {};
            numbers.push_back(value);
        }
    }
    return lines;
}

std::string Printed(const char* format, double a, double b = 0, double c = 0) {
    char text[160];
    std::snprintf(text, sizeof text, format, a, b, c);
    return text;
}

std::string ChainLabel(std::size_t index, std::size_t count) {
    return count > 1 ? std::string("chain ") + static_cast<char>('A' + index) + ": " : std::string();
}

std::string PeakTable(const std::vector<Numbers>& lines) {
    std::string text;
    for (std::size_t c = 0; c < lines.size(); ++c) {
        if (lines.size() > 1) text += ChainLabel(c, lines.size()) + "\n";
        if (lines[c].size() < 2) {
            text += "no peaks\n";
            continue;
        }
        text += "       MHz  dBm in one RBW\n";
        for (std::size_t k = 0; k + 1 < lines[c].size(); k += 2)
            text += Printed("%10.3f  %14.1f\n", lines[c][k], lines[c][k + 1]);
    }
    return text.empty() ? "no peaks; -find_peaks 10 searches\n" : text;
}

std::string TriggerText(const std::vector<Numbers>& lines) {
    return Printed("captured: %.0f bins from %.0f samples\n", lines[0][0], lines[1][0]);
}

/// Four lines a chain: counts of I and Q together, of I, of Q, and the lowest and highest code.
std::string HistogramTable(const std::vector<Numbers>& lines) {
    static constexpr const char* labels[] = {"I and Q", "I", "Q"};
    std::string text;
    for (std::size_t k = 0; k + 3 < lines.size(); k += 4) {
        const Numbers& range = lines[k + 3];
        text += ChainLabel(k / 4, lines.size() / 4);
        if (range.size() == 2)
            text += Printed("counts in %.0f buckets from %g to %g ADC codes\n", double(lines[k].size()), range[0],
                            range[1]);
        for (std::size_t row = 0; row < 3; ++row) {
            text += labels[row] + std::string(8 - std::string(labels[row]).size(), ' ');
            for (const double count : lines[k + row])
                text += Printed(" %g", count);
            text += '\n';
        }
    }
    return text;
}

/// Too many numbers for a screen.
std::string GraphSummary(const std::vector<Numbers>& lines, const std::string& unit, const std::string& saveKey) {
    std::string text;
    for (std::size_t c = 0; c < lines.size(); ++c) {
        if (lines[c].empty()) continue;
        const auto [low, high] = std::ranges::minmax(lines[c]);
        text += ChainLabel(c, lines.size()) + Printed("%.0f values, %g to %g ", double(lines[c].size()), low, high) +
                unit + "\n";
    }
    return text + "(" + saveKey + " FILE writes them, !raw on shows them)\n";
}

}  // namespace

std::string Readable(const std::string& line, const std::string& output) {
    std::string asItIs = output;
    if (!asItIs.empty() && !asItIs.ends_with('\n')) asItIs += '\n';
    std::vector<const TarnKeys::KeyRow*> keys;
    for (const std::string& token : CmdLine::Tokenize(line))
        if (const TarnKeys::KeyRow* key = TarnKeys::FindKey(token)) keys.push_back(key);
    // A trigger may have settings before it; the other answers come from lines of their own.
    const bool endsInTrigger =
        std::ranges::any_of(keys, [](auto* key) { return key->role == TarnKeys::KeyRole::Triggers; });
    const std::vector<Numbers> lines = NumberLines(output);
    if (endsInTrigger && lines.size() == 4 && std::ranges::all_of(lines, [](auto& l) { return l.size() == 1; }))
        return TriggerText(lines);
    if (keys.size() != 1) return asItIs;
    const TarnKeys::KeyRow* row = keys.front();
    if (row->name == "-update_peaks" && (output.empty() || !lines.empty())) return PeakTable(lines);
    if (lines.empty() || lines[0].empty()) return asItIs;
    if (row->name == "-get_power_per_chain") return Printed("%.2f dBm in the channel\n", lines[0][0]);
    if (row->name == "-update_spectrum") return GraphSummary(lines, "dBm in one RBW", "-save_spectrum");
    if (row->name == "-update_maxhold") return GraphSummary(lines, "dBm in one RBW", "-save_maxhold");
    if (row->name == "-update_channel_average") return GraphSummary(lines, "dBm in one RBW", "tarn measure --csv");
    if (row->name == "-update_iq" && lines.size() == 2) {
        const auto [low, high] = std::ranges::minmax(lines[0]);
        return Printed("%.0f samples, I from %g to %g", double(lines[0].size()), low, high) +
               " ADC codes\n(-save_IQ FILE writes them, !raw on shows them)\n";
    }
    if (row->name == "-update_histogram" && lines.size() % 4 == 0) return HistogramTable(lines);
    return asItIs;
}

}  // namespace TarnHost
