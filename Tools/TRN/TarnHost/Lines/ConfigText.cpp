#include "Lines/ConfigText.h"

#include <algorithm>
#include <vector>

namespace TarnHost {
namespace {

constexpr std::size_t linesBeforeChannels = 11;

std::vector<std::string_view> Lines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool CountChannel(std::string_view line, SupportedConfig& config) {
    for (std::size_t band = 0; band < RadioFacts::BandCount; ++band) {
        const std::string mark = "," + std::string(RadioFacts::Bands[band].code) + "),";
        const auto found = line.find(mark);
        if (found == std::string_view::npos) continue;
        const std::string_view flags = line.substr(found + mark.size());
        if (flags.size() != 2 * RadioFacts::BandwidthCount - 1) return false;
        for (std::size_t width = 0; width < RadioFacts::BandwidthCount; ++width)
            config.channels[band][width] += flags[2 * width] == '1' ? 1 : 0;
        return true;
    }
    return false;
}

}  // namespace

std::optional<SupportedConfig> ParseConfig(std::string_view text) {
    const auto lines = Lines(text);
    if (lines.size() < linesBeforeChannels) return std::nullopt;
    SupportedConfig config;
    config.macAddress = lines[6];
    config.ucode = lines[7];
    config.driver = lines[8];
    config.usc = lines[9];
    config.packetDriver = lines[10];
    for (std::size_t k = linesBeforeChannels; k < lines.size(); ++k) {
        if (!CountChannel(lines[k], config)) return std::nullopt;
    }
    return config;
}

}  // namespace TarnHost
