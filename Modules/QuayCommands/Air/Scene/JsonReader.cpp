#include "Air/Scene/JsonReader.h"

#include <algorithm>
#include <cmath>

#include "Format.h"

namespace quayCommand {
namespace {

/// "LINE:COLUMN" of a byte, both from 1.
std::string PlaceOf(std::string_view text, std::size_t byte) {
    const auto before = text.substr(0, std::min(byte, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto start = before.rfind('\n');
    const auto column = before.size() - (start == std::string_view::npos ? 0 : start + 1) + 1;
    return Common::Format("${1}:${2}") % line % column;
}

/// What the parser expected, without its own prefix and place.
std::string ShortReason(std::string reason) {
    const auto start = reason.rfind("syntax error");
    return start == std::string::npos ? reason : reason.substr(start);
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const auto& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

}  // namespace

nlohmann::json ParseJson(std::string_view text) {
    std::vector<std::set<std::string>> keys;
    const auto refuseTwins = [&](int, nlohmann::json::parse_event_t event, nlohmann::json& value) {
        using Event = nlohmann::json::parse_event_t;
        if (event == Event::object_start)
            keys.emplace_back();
        else if (event == Event::object_end)
            keys.pop_back();
        else if (event == Event::key && !keys.back().insert(value.get<std::string>()).second)
            throw JsonError(Common::Format("the key \"${1}\" stands twice in one object") % value.get<std::string>());
        return true;
    };
    try {
        return nlohmann::json::parse(text, refuseTwins);
    } catch (const nlohmann::json::parse_error& error) {
        const auto byte = error.byte > 0 ? error.byte - 1 : 0;
        throw JsonError(PlaceOf(text, byte) + ": " + ShortReason(error.what()));
    } catch (const nlohmann::json::exception& error) {
        throw JsonError(error.what());
    }
}

JsonObject::JsonObject(const nlohmann::json& value, std::string path) : m_value(value), m_path(std::move(path)) {
    if (!m_value.is_object()) throw JsonError((m_path.empty() ? "the document" : m_path) + ": isn't an object");
}

std::string JsonObject::PathOf(const std::string& key) const {
    return m_path.empty() ? key : m_path + "." + key;
}

void JsonObject::Fail(const std::string& key, const std::string& reason) const {
    throw JsonError(PathOf(key) + ": " + reason);
}

const nlohmann::json* JsonObject::Find(const std::string& key) {
    m_known.insert(key);
    const auto found = m_value.find(key);
    return found == m_value.end() ? nullptr : &*found;
}

const nlohmann::json& JsonObject::Get(const std::string& key) {
    const auto* value = Find(key);
    if (!value) Fail(key, "is missing");
    return *value;
}

double JsonObject::Checked(const std::string& key, const nlohmann::json& value, double low, double high) const {
    if (!value.is_number()) Fail(key, "isn't a number");
    const double number = value.get<double>();
    if (!(number >= low && number <= high))
        Fail(key, Common::Format("${1} is outside ${2} to ${3}") % number % low % high);
    return number;
}

double JsonObject::Number(const std::string& key, double low, double high) {
    return Checked(key, Get(key), low, high);
}

double JsonObject::Number(const std::string& key, double low, double high, double fallback) {
    return Find(key) ? Number(key, low, high) : fallback;
}

unsigned JsonObject::Whole(const std::string& key, unsigned low, unsigned high) {
    const double number = Number(key, low, high);
    if (number != std::floor(number)) Fail(key, "isn't a whole number");
    return static_cast<unsigned>(number);
}

unsigned JsonObject::Whole(const std::string& key, unsigned low, unsigned high, unsigned fallback) {
    return Find(key) ? Whole(key, low, high) : fallback;
}

bool JsonObject::Flag(const std::string& key, bool fallback) {
    const auto* value = Find(key);
    if (value && !value->is_boolean()) Fail(key, "isn't true or false");
    return value ? value->get<bool>() : fallback;
}

std::string JsonObject::Text(const std::string& key, const std::string& fallback) {
    const auto* value = Find(key);
    if (value && !value->is_string()) Fail(key, "isn't a text");
    return value ? value->get<std::string>() : fallback;
}

std::size_t JsonObject::Choice(const std::string& key, const std::vector<std::string>& choices) {
    Get(key);
    const auto text = Text(key, "");
    const auto found = std::find(choices.begin(), choices.end(), text);
    if (found == choices.end()) Fail(key, Common::Format("\"${1}\" is none of ${2}") % text % Joined(choices));
    return static_cast<std::size_t>(found - choices.begin());
}

std::size_t JsonObject::Choice(const std::string& key, const std::vector<std::string>& choices, std::size_t fallback) {
    return Find(key) ? Choice(key, choices) : fallback;
}

void JsonObject::Each(const std::string& key, const std::function<void(JsonObject&)>& read) {
    const auto* value = Find(key);
    if (!value) return;
    if (!value->is_array()) Fail(key, "isn't an array");
    for (std::size_t k = 0; k < value->size(); ++k) {
        JsonObject element((*value)[k], Common::Format("${1}[${2}]") % PathOf(key) % k);
        read(element);
        element.Done();
    }
}

std::vector<double> JsonObject::Numbers(const std::string& key, std::size_t count, double low, double high,
                                        double fallback) {
    const auto* value = Find(key);
    if (!value) return std::vector<double>(count, fallback);
    if (value->is_number()) return std::vector<double>(count, Checked(key, *value, low, high));
    if (!value->is_array() || value->size() != count)
        Fail(key, Common::Format("is neither a number nor an array of ${1}") % count);
    std::vector<double> numbers;
    for (std::size_t k = 0; k < count; ++k)
        numbers.push_back(Checked(Common::Format("${1}[${2}]") % key % k, (*value)[k], low, high));
    return numbers;
}

void JsonObject::Done() const {
    for (const auto& [key, value] : m_value.items())
        if (!m_known.contains(key))
            Fail(key, Common::Format("unknown key; the keys here are ${1}") % Joined({m_known.begin(), m_known.end()}));
}

}  // namespace quayCommand
