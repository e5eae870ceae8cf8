#include "Inputs.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "ChannelPlan.h"
#include "PlainText.h"

namespace TarnMeasure {
namespace {

/// Lower case, without blanks and without `unit` at its end.
std::string Plain(std::string_view text, std::string_view unit) {
    std::string plain;
    for (const char c : text)
        if (c != ' ' && c != '\t') plain += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    if (plain.ends_with(unit)) plain.resize(plain.size() - unit.size());
    return plain;
}

OSAL::Refusal NotOneOf(const std::string& what, const std::string& text, const std::string& values) {
    return {what + " '" + text + "' isn't one of " + values};
}

}  // namespace

OSAL::Outcome<std::string> ReadBand(const std::string& text) {
    const std::string plain = Plain(text, "ghz");
    // "2", "5", "6" and "7" name a band as well as its whole text does
    for (const RadioFacts::Band& band : RadioFacts::Bands)
        if (plain == band.name || plain == band.otherName || (plain.size() == 1 && band.name.find(plain[0]) == 0) ||
            (plain.size() == 1 && band.name.ends_with("-" + plain)))
            return std::string(band.name);
    return NotOneOf("band", text, Listed(RadioFacts::BandChoices));
}

OSAL::Outcome<std::string> ReadBandwidth(const std::string& text) {
    const std::string plain = Plain(text, "mhz");
    if (RadioFacts::FindBandwidth(plain)) return plain;
    return NotOneOf("bandwidth", text, Listed(RadioFacts::BandwidthChoices));
}

OSAL::Outcome<std::string> ReadChain(const std::string& text) {
    std::string plain = Plain(text, "");
    std::erase_if(plain, [](char c) { return c == '+' || c == ','; });
    if (plain == "a" || plain == "b") return std::string(plain == "a" ? "A" : "B");
    if (plain == "ab" || plain == "ba") return std::string("AB");
    return NotOneOf("chain", text, "A, B, AB");
}

OSAL::Outcome<double> ReadRbw(const std::string& text) {
    constexpr double near_khz = 0.6;  // "39", "78", "312" and "313"
    const std::string plain = Plain(text, "khz");
    double value = 0;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    if (error == std::errc() && end == plain.data() + plain.size())
        for (const double rbw : {39.0625, 78.125, 156.25, 312.5})
            if (std::abs(value - rbw) < near_khz) return rbw;
    return NotOneOf("resolution bandwidth", text, "39.0625, 78.125, 156.25, 312.5");
}

}  // namespace TarnMeasure
