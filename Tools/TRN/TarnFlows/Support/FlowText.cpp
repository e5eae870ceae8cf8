#include "Support/FlowText.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>
#include <stdexcept>

#include "Numbers.h"

namespace FlowText {

namespace {

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
    const auto parsed = SampleFiles::ParseReal(text);
    if (parsed.status == std::errc::invalid_argument) throw std::invalid_argument("invalid stod argument");
    if (parsed.status != std::errc{}) throw std::out_of_range("stod argument out of range");
    return parsed.value;
}

std::int32_t TextToInt(std::string_view text) {
    const auto parsed = SampleFiles::ParseInt(text);
    if (parsed.status == std::errc::invalid_argument) throw std::invalid_argument("invalid stoi argument");
    if (parsed.status != std::errc{}) throw std::out_of_range("stoi argument out of range");
    return parsed.value;
}

double AtofText(std::string_view text) {
    const auto parsed = SampleFiles::ParseReal(text);
    if (parsed.status != std::errc::result_out_of_range) return parsed.value;
    std::istringstream stream{std::string(text)};  // tells too small, which is 0, from too large
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    if (std::abs(value) > 1) throw std::out_of_range("number out of range");
    return value;
}

std::int32_t AtoiText(std::string_view text) {
    return SampleFiles::ParseInt(text).value;
}

}  // namespace FlowText
