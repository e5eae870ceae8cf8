#include "Support/FlowText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace FlowText {

namespace {

struct ParsedReal {
    double value = 0.0;
    std::errc status = std::errc::invalid_argument;
};

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

/// `from_chars` with what `strtod` accepts beyond it: white space, "+" and "0x".
ParsedReal ParseReal(std::string_view text) {
    const bool negative = TakeSign(text);
    ParsedReal parsed;
    if (text.empty() || text.front() == '-') return parsed;  // a second sign, which from_chars would take
    const bool hex = IsHexReal(text);
    if (hex) text.remove_prefix(2);
    parsed.status = std::from_chars(text.data(), text.data() + text.size(), parsed.value,
                                    hex ? std::chars_format::hex : std::chars_format::general)
                        .ec;
    if (negative) parsed.value = -parsed.value;
    return parsed;
}

struct ParsedInt {
    std::int32_t value = 0;  ///< the nearest limit when out of range
    std::errc status = std::errc::invalid_argument;
};

ParsedInt ParseInt(std::string_view text) {
    const bool negative = TakeSign(text);
    ParsedInt parsed;
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

/// The next token behind `position`, which moves behind the delimiter that ended it; empty when there is none.
std::string_view NextToken(std::string_view text, std::size_t& position, std::string_view delimiters) {
    const std::size_t begin = text.find_first_not_of(delimiters, position);
    if (begin == std::string_view::npos) {
        position = text.size();
        return {};
    }
    const std::size_t end = std::min(text.find_first_of(delimiters, begin), text.size());
    position = std::min(end + 1, text.size());
    return text.substr(begin, end - begin);
}

}  // namespace

bool convertFromStringToBool(const std::string& text) {
    if (text == "true") return true;
    if (text == "false") return false;
    const std::string message = Common::Format("Invalid flag: ${1}") % text;
    throw new CSvMsgException(message.c_str(), __FILE__, __LINE__, __func__);
}

std::vector<std::string> SplitString(std::string& text, const std::string& delimiters) {
    std::vector<std::string> tokens;
    std::size_t position = 0;
    for (auto token = NextToken(text, position, delimiters); !token.empty();
         token = NextToken(text, position, delimiters))
        tokens.emplace_back(token);
    text.clear();
    return tokens;
}

std::vector<std::int32_t> SplitStringToInts(std::string& text, const std::string& delimiters) {
    std::vector<std::int32_t> values;
    std::size_t position = 0;
    for (auto token = NextToken(text, position, ","); !token.empty(); token = NextToken(text, position, delimiters))
        values.push_back(AtoiText(token));
    text.clear();
    return values;
}

double TextToDouble(std::string_view text) {
    const ParsedReal parsed = ParseReal(text);
    if (parsed.status == std::errc::invalid_argument) throw std::invalid_argument("invalid stod argument");
    if (parsed.status != std::errc{}) throw std::out_of_range("stod argument out of range");
    return parsed.value;
}

std::int32_t TextToInt(std::string_view text) {
    const ParsedInt parsed = ParseInt(text);
    if (parsed.status == std::errc::invalid_argument) throw std::invalid_argument("invalid stoi argument");
    if (parsed.status != std::errc{}) throw std::out_of_range("stoi argument out of range");
    return parsed.value;
}

double AtofText(std::string_view text) {
    const ParsedReal parsed = ParseReal(text);
    if (parsed.status != std::errc::result_out_of_range) return parsed.value;
    std::istringstream stream{std::string(text)};  // tells too small, which is 0, from too large
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    if (std::abs(value) > 1) throw std::out_of_range("number out of range");
    return value;
}

std::int32_t AtoiText(std::string_view text) {
    return ParseInt(text).value;
}

}  // namespace FlowText
