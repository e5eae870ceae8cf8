#include "AdapterFacts.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace TarnSession {
namespace {

constexpr std::size_t linesBeforeChannels = 11;

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        parts.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

/// The whole of `text` as a decimal number.
std::optional<std::uint32_t> Number(std::string_view text) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// One line "(36,HB),1,1,1,0,0".
bool AddChannel(std::string_view line, ChannelLists& channels) {
    for (std::size_t band = 0; band < RadioFacts::BandCount; ++band) {
        const std::string mark = "," + std::string(RadioFacts::Bands[band].code) + "),";
        const auto found = line.find(mark);
        if (found == std::string_view::npos || !line.starts_with('(')) continue;
        const auto channel = Number(line.substr(1, found - 1));
        const std::string_view flags = line.substr(found + mark.size());
        if (!channel || flags.size() != 2 * RadioFacts::BandwidthCount - 1) return false;
        for (std::size_t width = 0; width < RadioFacts::BandwidthCount; ++width)
            if (flags[2 * width] == '1') channels[band][width].push_back(static_cast<int>(*channel));
        return true;
    }
    return false;
}

}  // namespace

AdapterFacts FactsOf(const quayCommand::AdapterDescription& adapter) {
    AdapterFacts facts;
    facts.hwType = adapter.hwType;
    facts.cardType = adapter.cardType;
    facts.deviceId = adapter.deviceId;
    facts.chainMask = adapter.antennaMask;
    facts.samples = adapter.samples;
    facts.macAddress = adapter.mac;
    return facts;
}

bool AddSupportedConfig(std::string_view text, AdapterFacts& facts) {
    const auto lines = Split(text, '\n');
    if (lines.size() < linesBeforeChannels) return false;
    facts.macAddress = lines[6];
    facts.ucode = lines[7];
    facts.driver = lines[8];
    facts.usc = lines[9];
    facts.packetDriver = lines[10];
    facts.channels = {};
    return std::all_of(lines.begin() + linesBeforeChannels, lines.end(),
                       [&](std::string_view line) { return AddChannel(line, facts.channels); });
}

}  // namespace TarnSession
