#include "ValueText.h"

#include <locale>
#include <sstream>
#include <type_traits>
#include <utility>

namespace Core {

namespace {

enum class Notation { Number, Decimal, Boolean };

template <typename T>
bool Read(std::string text, T& value, Notation notation) {
    Utilities::FormatProviders::Instance().PreProcess(text);
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    if (notation == Notation::Number && text.starts_with("0x")) stream.setf(std::ios::hex, std::ios::basefield);
    if (notation == Notation::Boolean) stream.setf(std::ios::boolalpha);
    T read{};
    if (!(stream >> read) || stream.peek() != std::istringstream::traits_type::eof()) return false;
    value = read;
    return true;
}

}  // namespace

std::string IntegerToText(long long value) {
    return std::to_string(value);
}
std::string IntegerToText(unsigned long long value) {
    return std::to_string(value);
}

template <IntegerType T>
bool TextToInteger(const std::string& text, T& value) {
    if constexpr (sizeof(T) == 1) {  // a stream would read a letter; here characters are small numbers
        int number = 0;
        if (!Read(text, number, Notation::Number)) return false;
        using Range = std::conditional_t<std::is_signed_v<T>, signed char, unsigned char>;
        if (!std::in_range<Range>(number)) return false;
        value = static_cast<T>(number);
        return true;
    } else {
        return Read(text, value, Notation::Number);
    }
}

template bool TextToInteger(const std::string&, char&);
template bool TextToInteger(const std::string&, unsigned char&);
template bool TextToInteger(const std::string&, short&);
template bool TextToInteger(const std::string&, unsigned short&);
template bool TextToInteger(const std::string&, int&);
template bool TextToInteger(const std::string&, unsigned int&);
template bool TextToInteger(const std::string&, long&);
template bool TextToInteger(const std::string&, unsigned long&);
template bool TextToInteger(const std::string&, long long&);
template bool TextToInteger(const std::string&, unsigned long long&);

bool TextToBool(const std::string& text, bool& value) {
    return Read(text, value, Notation::Boolean);
}
bool TextToDouble(const std::string& text, double& value) {
    return Read(text, value, Notation::Decimal);
}

}  // namespace Core
