#include "Numbers.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace SampleFiles {
namespace {

/// The white space of the C locale.
bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// True behind a "0x" that a hexadecimal number follows; without one only the "0" is a number.
bool IsHexReal(std::string_view text) {
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
    return IsHexDigit(text[2]) || (text[2] == '.' && text.size() > 3 && IsHexDigit(text[3]));
}

/// Cuts white space and one sign from the front; answers whether the sign was "-".
bool TakeSign(std::string_view& text) {
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
    const bool negative = text.front() == '-';
    text.remove_prefix(1);
    return negative;
}

}  // namespace

// `from_chars` with what `strtod` accepts beyond it: white space, "+" and "0x".
Parsed<double> ParseReal(std::string_view text) {
    const bool negative = TakeSign(text);
    Parsed<double> parsed;
    if (text.empty() || text.front() == '-') return parsed;  // a second sign, which from_chars would take
    const bool hex = IsHexReal(text);
    if (hex) text.remove_prefix(2);
    parsed.status = std::from_chars(text.data(), text.data() + text.size(), parsed.value,
                                    hex ? std::chars_format::hex : std::chars_format::general)
                        .ec;
    if (negative) parsed.value = -parsed.value;
    return parsed;
}

Parsed<std::int32_t> ParseInt(std::string_view text) {
    const bool negative = TakeSign(text);
    Parsed<std::int32_t> parsed;
    if (text.empty() || !IsDigit(text.front())) return parsed;
    std::int64_t magnitude = 0;
    parsed.status = std::from_chars(text.data(), text.data() + text.size(), magnitude).ec;
    if (parsed.status != std::errc{}) magnitude = std::numeric_limits<std::int64_t>::max();
    const std::int64_t value = negative ? -magnitude : magnitude;
    using Limits = std::numeric_limits<std::int32_t>;
    parsed.value = static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
    if (parsed.value != value) parsed.status = std::errc::result_out_of_range;
    return parsed;
}

std::vector<double> NumbersOf(std::string_view line) {
    std::vector<double> numbers;
    const char* at = line.data();
    const char* const end = at + line.size();
    while (at < end) {
        double value = 0;
        const auto [next, error] = std::from_chars(at, end, value);
        if (error != std::errc()) {
            ++at;
            continue;
        }
        numbers.push_back(value);
        at = next;
    }
    return numbers;
}

std::vector<std::vector<double>> NumberLinesOf(std::string_view text) {
    std::vector<std::vector<double>> lines;
    while (!text.empty()) {
        const auto feed = text.find('\n');
        lines.push_back(NumbersOf(text.substr(0, feed)));
        text.remove_prefix(feed == std::string_view::npos ? text.size() : feed + 1);
    }
    return lines;
}

}  // namespace SampleFiles
