// Values to text and text to values, by type.
#pragma once

#include <string>

#include "IValue.h"

namespace Core {

std::string IntegerToText(long long value);
std::string IntegerToText(unsigned long long value);

/// Reads as a stream does, without locale: leading blanks are skipped, the rest of the text must be used up. Template
/// filters run first. Integers: "0x" begins a hexadecimal number. False leaves `value` as it was.
template <IntegerType T>
bool TextToInteger(const std::string& text, T& value);
bool TextToBool(const std::string& text, bool& value);
bool TextToDouble(const std::string& text, double& value);

/// Integers of every width, the characters too, are decimal numbers.
template <ValueType T>
std::string ToText(const T& value) {
    if constexpr (CoreTypes::Enumeration<T>)
        return CoreTypes::MetaType<T>::Get().Display(static_cast<std::int32_t>(value));
    else if constexpr (std::same_as<T, bool>)
        return value ? "true" : "false";
    else if constexpr (IntegerType<T> && std::unsigned_integral<T>)
        return IntegerToText(static_cast<unsigned long long>(value));
    else if constexpr (IntegerType<T>)
        return IntegerToText(static_cast<long long>(value));
    else if constexpr (std::same_as<T, double>)
        return Common::ToStreamText(value);
    else if constexpr (std::same_as<T, std::string>)
        return value;
    else
        return {};  // a set of values has no text form
}

template <ValueType T>
bool FromText(const std::string& text, T& value) {
    if constexpr (CoreTypes::Enumeration<T>) {
        const auto found = CoreTypes::MetaType<T>::Get().Find(text);
        if (found) value = static_cast<T>(*found);
        return found.has_value();
    } else if constexpr (std::same_as<T, bool>) {
        return TextToBool(text, value);
    } else if constexpr (IntegerType<T>) {
        return TextToInteger(text, value);
    } else if constexpr (std::same_as<T, double>) {
        return TextToDouble(text, value);
    } else if constexpr (std::same_as<T, std::string>) {
        value = text;
        return true;
    } else {
        return false;
    }
}

}  // namespace Core
