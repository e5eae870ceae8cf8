#include "Adapter/AdapterDescription.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <limits>
#include <optional>

#include "ChannelPlan.h"
#include "Format.h"
#include "TextTools.h"

namespace quayCommand {
namespace {

using Reason = std::optional<std::string>;

/// A whole number within the bounds, decimal or "0x..." hexadecimal.
template <typename T>
Reason ReadNumber(std::string_view text, std::uint64_t low, std::uint64_t high, T& out) {
    const auto value = WholeNumber(text);
    if (!value || *value < low || *value > high)
        return Common::Format("\"${1}\" isn't a whole number from ${2} to ${3}") % text % low % high;
    out = static_cast<T>(*value);
    return {};
}

/// Six bytes in hexadecimal, with ":" or "-" between them or nothing. Kept as it is written, since a gain file is
/// searched for the same text.
Reason ReadMac(std::string_view text, std::string& out) {
    const bool separated = text.size() == 17;
    const std::size_t step = separated ? 3 : 2;
    bool good = separated || text.size() == 12;
    for (std::size_t k = 0; good && k < text.size(); ++k) {
        if (separated && k % step == 2)
            good = text[k] == text[2] && (text[k] == ':' || text[k] == '-');
        else
            good = std::isxdigit(static_cast<unsigned char>(text[k])) != 0;
    }
    if (!good) return Common::Format("\"${1}\" isn't a MAC address such as 02:54:41:52:4E:01") % text;
    out = text;
    return {};
}

Reason ReadBands(std::string_view text, std::set<std::uint32_t>& out) {
    std::set<std::uint32_t> bands;
    for (const auto part : SplitAt(text, '+')) {
        const auto band = WholeNumber(part);
        if (!band || *band >= RadioFacts::BandCount || !bands.insert(static_cast<std::uint32_t>(*band)).second)
            return Common::Format("\"${1}\" isn't a list of different bands such as 0+1+2") % text;
    }
    out = std::move(bands);
    return {};
}

Reason ReadFlag(std::string_view text, bool& out) {
    if (text != "0" && text != "1" && text != "true" && text != "false")
        return Common::Format("\"${1}\" is none of 0, 1, true, false") % text;
    out = text == "1" || text == "true";
    return {};
}

std::string BandsText(const std::set<std::uint32_t>& bands) {
    std::string text;
    for (const auto band : bands)
        text += (text.empty() ? "" : "+") + std::to_string(band);
    return text;
}

/// A key, how its value is read, and how it is written.
struct Key {
    std::string_view name;
    Reason (*read)(std::string_view, AdapterDescription&);
    std::string (*write)(const AdapterDescription&);
};

using D = AdapterDescription;
using Text = std::string_view;
constexpr auto Max32 = std::numeric_limits<std::uint32_t>::max();
constexpr auto Max64 = std::numeric_limits<std::uint64_t>::max();

const std::array Keys{
    Key{"hw", [](Text t, D& d) { return ReadNumber(t, 0, 255, d.hwType); },
        [](const D& d) { return std::to_string(d.hwType); }},
    Key{"card", [](Text t, D& d) { return ReadNumber(t, 0, 255, d.cardType); },
        [](const D& d) { return std::to_string(d.cardType); }},
    Key{"device", [](Text t, D& d) { return ReadNumber(t, 0, Max32, d.deviceId); },
        [](const D& d) { return "0x" + Common::ToDecimalText(d.deviceId, 16, 4); }},
    Key{"antennas", [](Text t, D& d) { return ReadNumber(t, 1, 3, d.antennaMask); },
        [](const D& d) { return std::to_string(d.antennaMask); }},
    Key{"sku", [](Text t, D& d) { return ReadNumber(t, 0, 255, d.boardSku); },
        [](const D& d) { return std::to_string(d.boardSku); }},
    Key{"mac", [](Text t, D& d) { return ReadMac(t, d.mac); }, [](const D& d) { return d.mac; }},
    Key{"bands", [](Text t, D& d) { return ReadBands(t, d.bands); }, [](const D& d) { return BandsText(d.bands); }},
    Key{"samples", [](Text t, D& d) { return ReadNumber(t, MinCaptureSamples, MaxCaptureSamples, d.samples); },
        [](const D& d) { return std::to_string(d.samples); }},
    Key{"seed", [](Text t, D& d) { return ReadNumber(t, 0, Max64, d.seed); },
        [](const D& d) { return std::to_string(d.seed); }},
    Key{"connected", [](Text t, D& d) { return ReadFlag(t, d.connected); },
        [](const D& d) { return std::string(d.connected ? "1" : "0"); }},
};

std::string KeyNames() {
    std::string names;
    for (const auto& key : Keys)
        names += (names.empty() ? "" : ", ") + std::string(key.name);
    return names;
}

}  // namespace

OSAL::Outcome<AdapterDescription> ReadAdapter(std::string_view text) {
    AdapterDescription adapter;
    if (text.empty()) return adapter;
    std::set<std::string_view> seen;
    for (const auto part : SplitAt(text, ',')) {
        const auto equals = part.find('=');
        const auto name = part.substr(0, equals);
        const auto key = std::find_if(Keys.begin(), Keys.end(), [&](const Key& k) { return k.name == name; });
        if (key == Keys.end())
            return OSAL::Refusal{Common::Format("adapter: ${1}: unknown key; the keys are ${2}") % name % KeyNames()};
        Reason reason;
        if (equals == std::string_view::npos)
            reason = "has no value";
        else if (!seen.insert(name).second)
            reason = "is given twice";
        else
            reason = key->read(part.substr(equals + 1), adapter);
        if (reason) return OSAL::Refusal{Common::Format("adapter: ${1}: ${2}") % name % *reason};
    }
    return adapter;
}

std::string AdapterText(const AdapterDescription& adapter) {
    std::string text;
    for (const auto& key : Keys)
        text += (text.empty() ? "" : ",") + std::string(key.name) + "=" + key.write(adapter);
    return text;
}

}  // namespace quayCommand
