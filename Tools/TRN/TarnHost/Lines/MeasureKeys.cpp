#include "Lines/MeasureKeys.h"

#include <iterator>

#include "CmdLine/CmdLine.h"
#include "KeyTable.h"
#include "Lines/KeyLine.h"

namespace TarnHost {
namespace {

constexpr std::string_view gainFileKey = "-gain_file_name", useGainKey = "-set_gain_from_file";

void Append(std::string& line, const std::string& token) {
    if (!line.empty()) line += ' ';
    line += token.find_first_of(" \t") == std::string::npos ? token : QuoteToken(token).value_or(token);
}

/// Why the key can't stand in a measurement; empty when it can.
std::string Objection(const TarnKeys::KeyRow& key) {
    if (key.spoilsMeasurement) return "the measurement itself sets what it sets";
    if (key.name == "-power_deembedding" || key.name == "-noise_floor")
        return "it changes the answer to -get_power_per_chain only, not what a measurement reports";
    return {};
}

}  // namespace

OSAL::Outcome<MeasureKeys> ReadMeasureKeys(const std::string& line) {
    MeasureKeys keys;
    std::string gainFile, manualKey;
    bool usesGain = false;
    const CmdLine::TokenList tokens = CmdLine::Tokenize(line);
    for (auto token = tokens.begin(); token != tokens.end(); ++token) {
        const TarnKeys::KeyRow* key = TarnKeys::FindKey(*token);
        if (const std::string why = key ? Objection(*key) : std::string(); !why.empty())
            return OSAL::Refusal{"--keys: " + *token + " isn't for this line: " + why};
        if (key && key->name == gainFileKey && std::next(token) != tokens.end()) {
            gainFile = *++token;
            continue;
        }
        if (key && key->name == useGainKey) {
            usesGain = true;
            continue;
        }
        if (key && (key->name == "-internal_gain" || key->name == "-external_gain" || key->name == "-preLNA_resistor"))
            manualKey = key->name;
        Append(keys.setup, *token);
    }
    if (gainFile.empty() && usesGain)
        return OSAL::Refusal{"--keys: " + std::string(useGainKey) + " needs " + std::string(gainFileKey) + " FILE"};
    if (gainFile.empty()) return keys;
    if (!manualKey.empty())
        return OSAL::Refusal{"--keys: " + manualKey + " ends the use of a gain file; give one of the two"};
    const auto path = QuotePath(gainFile);
    if (!path) return OSAL::Refusal{"--keys: the gain file's name can't hold a double quote"};
    keys.gainFile = *path;
    return keys;
}

}  // namespace TarnHost
