// Small texts of the flows: flags, lists, ranges and numbers. The locale plays no part in any of them. Numbers to text
// stand in NumberText.h.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Exceptions.h"
#include "Format.h"

namespace FlowText {

/// Exactly "true" or "false"; any other text throws a pointer to CSvMsgException.
bool convertFromStringToBool(const std::string& text);

/// Tokens between runs of the characters in `delimiters`; empty tokens don't exist. The text is consumed: it is empty
/// afterwards.
std::vector<std::string> SplitString(std::string& text, const std::string& delimiters);
/// The same as whole numbers by `AtoiText`. The first token always ends at ",", the delimiters hold behind it.
std::vector<std::int32_t> SplitStringToInts(std::string& text, const std::string& delimiters);

/// Throws a pointer to CmdLine::Exceptions::ParsingException when `value` is outside low to high, both allowed.
/// `Number` is named by the caller, so that a negative number can be looked at as a large unsigned one.
template <std::integral Number>
void CheckRange(Number value, std::type_identity_t<Number> low, std::type_identity_t<Number> high,
                const std::string& name) {
    if (value < low || value > high)
        throw new CmdLine::Exceptions::ParsingException(Common::Format("parameter ${1} is out of range [${2}...${3}]") %
                                                        name % low % high);
}

// Text to number by the rules of the forgiving standard conversions: leading white space is skipped, text behind the
// number is ignored; reals may be hexadecimal, "inf" or "nan".
/// As `stod`: throws std::invalid_argument "invalid stod argument" or std::out_of_range "stod argument out of range".
/// A result that is only representable with fewer bits (subnormal) is accepted; one too small for any is out of range.
double TextToDouble(std::string_view text);
/// As `stoi`, with "invalid stoi argument" and "stoi argument out of range".
std::int32_t TextToInt(std::string_view text);
/// As `atof`: 0 without a number. Throws std::out_of_range where `atof` has no defined answer.
double AtofText(std::string_view text);
/// As `atoi`: 0 without a number; the nearest limit where `atoi` has no defined answer.
std::int32_t AtoiText(std::string_view text);

}  // namespace FlowText
