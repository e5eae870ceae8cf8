#include "Lines/SettingsMemory.h"

#include "CmdLine/CmdLine.h"
#include "KeyTable.h"

namespace TarnHost {
namespace {

using Values = std::map<std::string, std::string>;

/// The keys of a line with their values.
Values KeysOf(const std::string& line) {
    Values values;
    const CmdLine::TokenList tokens = CmdLine::Tokenize(line);
    for (auto token = tokens.begin(); token != tokens.end(); ++token) {
        const TarnKeys::KeyRow* key = TarnKeys::FindKey(*token);
        if (!key) continue;
        const bool hasValue = key->argument != TarnKeys::ArgumentType::None && std::next(token) != tokens.end();
        values[std::string(key->name)] = hasValue ? *++token : std::string();
    }
    return values;
}

bool IsSetting(const TarnKeys::KeyRow& key) {
    return key.argument != TarnKeys::ArgumentType::None && key.name != "-channel_average_counter" &&
           (key.group == "Settings" || key.group == "Analysis" || key.group == "Gain and floor");
}

void Forget(Values& values, std::initializer_list<const char*> keys) {
    for (const char* key : keys)
        values.erase(key);
}

}  // namespace

void SettingsMemory::Take(const std::string& line) {
    const Values onLine = KeysOf(line);
    const auto forgetTuning = [&] {
        Forget(m_values, {"-band", "-bandwidth", "-channel", "-chain", "-gain_file_name"});
    };
    for (const TarnKeys::KeyRow& key : TarnKeys::Keys()) {
        const auto entry = onLine.find(std::string(key.name));
        if (entry == onLine.end()) continue;
        if (key.name == "-reset_config" || key.name == "-set_mcc") forgetTuning();  // what they set back
        // a channel number means nothing in another band or at another width
        if (key.name == "-band") Forget(m_values, {"-bandwidth", "-channel"});
        if (key.name == "-bandwidth") Forget(m_values, {"-channel"});
        if (IsSetting(key)) m_values[entry->first] = entry->second;
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
    const Values onLine = KeysOf(line);
    if (!onLine.contains("-trigger_now")) return false;
    for (const TarnKeys::KeyRow& key : TarnKeys::Keys())
        if ((key.group == "Results" || key.name.starts_with("-save_")) && onLine.contains(std::string(key.name)))
            return true;
    return false;
}

}  // namespace TarnHost
