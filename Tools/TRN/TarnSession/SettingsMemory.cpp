#include "SettingsMemory.h"

#include <algorithm>
#include <string_view>

#include "CmdLine/CmdLine.h"
#include "KeyTable.h"

namespace TarnSession {
namespace {

using KeyValues = std::map<std::string, std::string>;

/// The keys of a line with their values.
KeyValues KeysOf(const std::string& line) {
    KeyValues values;
    const CmdLine::TokenList tokens = CmdLine::Tokenize(line);
    for (auto token = tokens.begin(); token != tokens.end(); ++token) {
        const TarnKeys::KeyRow* key = TarnKeys::FindKey(*token);
        if (!key) continue;
        const bool hasValue = key->argument.kind != TarnKeys::ArgumentKind::None && std::next(token) != tokens.end();
        values[std::string(key->name)] = hasValue ? *++token : std::string();
    }
    return values;
}

/// @param keys  names split by "|"
void Forget(KeyValues& values, std::string_view keys) {
    while (!keys.empty()) {
        const std::size_t end = std::min(keys.find('|'), keys.size());
        values.erase(std::string(keys.substr(0, end)));
        keys.remove_prefix(std::min(end + 1, keys.size()));
    }
}

}  // namespace

void SettingsMemory::Take(const std::string& line) {
    const KeyValues onLine = KeysOf(line);
    for (const TarnKeys::KeyRow& key : TarnKeys::Keys()) {
        const auto entry = onLine.find(std::string(key.name));
        if (entry == onLine.end()) continue;
        Forget(m_values, key.voids);
        if (key.role == TarnKeys::KeyRole::Sets) m_values[entry->first] = entry->second;
    }
}

std::string SettingsMemory::Text() const {
    std::string text;
    for (const auto& [key, value] : m_values) {
        if (!text.empty()) text += ' ';
        text.append(key).append(1, ' ').append(value);
    }
    return text;
}

bool ReadsBeforeItsTrigger(const std::string& line) {
    const KeyValues onLine = KeysOf(line);
    if (!onLine.contains("-trigger_now")) return false;
    for (const TarnKeys::KeyRow& key : TarnKeys::Keys())
        if (TarnKeys::ReadsBeforeTrigger(key) && onLine.contains(std::string(key.name))) return true;
    return false;
}

}  // namespace TarnSession
