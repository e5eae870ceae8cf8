#include "AdapterFacts.h"

#include <algorithm>
#include <charconv>

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

/// The whole of `text` as a decimal number, or a hexadecimal one behind "0x".
std::optional<std::uint32_t> Number(std::string_view text) {
    const bool isHex = text.starts_with("0x");
    if (isHex) text.remove_prefix(2);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, isHex ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<std::string_view> ValueOf(std::string_view description, std::string_view key) {
    for (const std::string_view pair : Split(description, ','))
        if (pair.starts_with(key) && pair.substr(key.size()).starts_with('=')) return pair.substr(key.size() + 1);
    return std::nullopt;
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

OSAL::Outcome<AdapterFacts> ReadDescription(std::string_view description) {
    AdapterFacts facts;
    const std::pair<std::string_view, std::uint32_t*> numbers[] = {{"hw", &facts.hwType},
                                                                   {"card", &facts.cardType},
                                                                   {"device", &facts.deviceId},
                                                                   {"antennas", &facts.chainMask},
                                                                   {"samples", &facts.samples}};
    for (const auto& [key, field] : numbers) {
        const auto value = ValueOf(description, key);
        const auto number = value ? Number(*value) : std::nullopt;
        if (!number) return OSAL::Refusal{"the adapter's description doesn't tell '" + std::string(key) + "'"};
        *field = *number;
    }
    facts.macAddress = ValueOf(description, "mac").value_or("");
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
