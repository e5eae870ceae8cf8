#include "DesenseConfig.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "Guard.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;

constexpr auto& keys = TarnKeys::TestConfigKeys;
constexpr std::size_t longestText = 64 << 10;
constexpr int mostIterations = 100;
constexpr int highestChannel = 300;
constexpr std::array<double, 4> resolutions_khz = {39.0625, 78.125, 156.25, 312.5};

std::string Shown(std::string_view text) {
    return "'" + std::string(text.substr(0, 80)) + "'";
}

bool IsOneOf(const std::string& value, std::initializer_list<std::string_view> values) {
    return std::ranges::find(values, value) != values.end();
}

template <typename Number>
bool IsNumber(const std::string& text, Number low, Number high) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && value >= low && value <= high;
}

bool IsList(std::size_t key) {
    return key >= VesperParamLowBand;
}

/// A value of a request as the file writes it; nothing for one that has no such form.
std::optional<std::string> TextOf(std::size_t key, const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (!IsList(key)) {
        if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
        return value.is_number() ? std::optional(value.dump()) : std::nullopt;
    }
    if (!value.is_array()) return std::nullopt;
    std::string list;
    for (const Json& item : value) {
        if (!item.is_number_integer()) return std::nullopt;
        list += (list.empty() ? "" : ";") + item.dump();
    }
    return list;
}

bool IsChannelList(const std::string& list) {
    if (list.empty()) return true;
    std::istringstream numbers(list + ";");
    for (std::string number; std::getline(numbers, number, ';');)
        if (!IsNumber(number, 1, highestChannel)) return false;
    return true;
}

bool IsResolution(const std::string& text) {
    return std::ranges::any_of(resolutions_khz, [&](double rbw_khz) { return IsNumber(text, rbw_khz, rbw_khz); });
}

}  // namespace

OSAL::Outcome<DesenseConfig> DesenseConfig::FromText(std::string_view text) {
    if (text.size() > longestText) return OSAL::Refusal{"the configuration is too long"};
    Json values = Json::object();
    while (!text.empty() && values.size() < VesperParamCount) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string line(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.pop_back();
        if (line.empty()) continue;
        const std::size_t comma = line.find(',');
        if (comma == std::string::npos) return OSAL::Refusal{Shown(line) + " isn't a line KEY,VALUE"};
        const std::string key = line.substr(0, comma);
        std::string value = line.substr(comma + 1, line.find(',', comma + 1) - comma - 1);
        if (values.contains(key)) return OSAL::Refusal{"the configuration says " + Shown(key) + " twice"};
        if (key.ends_with("Channels")) {
            if (value.size() < 2 || value.front() != '[' || value.back() != ']')
                return OSAL::Refusal{key + ": the channels must stand in brackets, such as [1;6;11]"};
            value = value.substr(1, value.size() - 2);
        }
        values[key] = value;
    }
    return FromJson(values);
}

OSAL::Outcome<DesenseConfig> DesenseConfig::FromJson(const Json& json) {
    if (!json.is_object()) return OSAL::Refusal{"the configuration isn't a JSON object"};
    for (const auto& [key, value] : json.items())
        if (std::ranges::find(keys, key) == keys.end())
            return OSAL::Refusal{Shown(key) + " is no key of the configuration"};
    DesenseConfig config;
    for (std::size_t k = 0; k < VesperParamCount; ++k) {
        const auto value = json.find(keys[k]);
        if (value == json.end()) return OSAL::Refusal{"the configuration has no " + std::string(keys[k])};
        const auto text = TextOf(k, *value);
        if (!text)
            return OSAL::Refusal{
                std::string(keys[k]) + " must be " +
                (IsList(k) ? "an array of channel numbers or a text such as 1;6;11" : "a text or a number")};
        config.m_values[k] = *text;
    }
    for (char& letter : config.m_values[VesperParamDisableBit])
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    const auto checked = config.Check();
    if (!checked) return checked.Why();
    return config;
}

OSAL::Outcome<> DesenseConfig::Check() const {
    const auto wrong = [&](std::size_t key, const std::string& wanted) {
        return OSAL::Refusal{std::string(keys[key]) + " " + Shown(m_values[key]) + " must be " + wanted};
    };
    if (!IsOneOf(m_values[VesperParamBandwidth], {"20", "40", "80", "160", "320"}))
        return wrong(VesperParamBandwidth, "20, 40, 80, 160 or 320");
    if (!IsResolution(m_values[VesperParamRbw])) return wrong(VesperParamRbw, "39.0625, 78.125, 156.25 or 312.5");
    if (!IsOneOf(m_values[VesperParamChainMode], {"A", "B", "AB", "A->B"}))
        return wrong(VesperParamChainMode, "A, B, AB or A->B");
    if (!IsNumber(m_values[VesperParamIterations], 1, mostIterations))
        return wrong(VesperParamIterations, "a whole number from 1 to 100");
    if (!IsFileName(m_values[VesperParamBitcfg])) return wrong(VesperParamBitcfg, "the plain name of a workload file");
    if (!IsOneOf(m_values[VesperParamDisableBit], {"true", "false"}))
        return wrong(VesperParamDisableBit, "true or false");
    bool hasChannel = false;
    for (std::size_t k = VesperParamLowBand; k < VesperParamCount; ++k) {
        if (!IsChannelList(m_values[k])) return wrong(k, "channel numbers from 1 to 300 split by ';'");
        hasChannel |= !m_values[k].empty();
    }
    if (!hasChannel) return OSAL::Refusal{"the configuration names no channel"};
    return {};
}

std::string DesenseConfig::Text() const {
    std::string text;
    for (std::size_t k = 0; k < VesperParamCount; ++k)
        text += std::string(keys[k]) + "," + (k < VesperParamLowBand ? m_values[k] : "[" + m_values[k] + "]") + "\n";
    return text;
}

Json DesenseConfig::ToJson() const {
    Json json = Json::object();
    for (std::size_t k = 0; k < VesperParamCount; ++k)
        json[std::string(keys[k])] = m_values[k];
    return json;
}

bool DesenseConfig::LoadsMachine() const {
    return m_values[VesperParamDisableBit] == "false";
}

int DesenseConfig::Width_mhz() const {
    return std::atoi(m_values[VesperParamBandwidth].c_str());
}

}  // namespace TarnServe
