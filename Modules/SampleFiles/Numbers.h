// Text to number, the same in every locale.
#pragma once

#include <cstdint>
#include <string_view>
#include <system_error>
#include <vector>

namespace SampleFiles {

/// A number at the start of a text, by the rules of the forgiving standard conversions: leading white space is skipped,
/// text behind the number is ignored.
template <typename Number>
struct Parsed {
    Number value{};
    std::errc status = std::errc::invalid_argument;  ///< or `result_out_of_range`, or `errc()` for a number
    bool IsNumber() const { return status == std::errc(); }
};

/// As `strtod`: hexadecimal, "inf" and "nan" too. A result that only a subnormal holds is a number; one too small for
/// any, or too large, is out of range.
Parsed<double> ParseReal(std::string_view text);

/// As `strtol` of base 10 for 32 bits; out of range, the value is the nearest limit.
Parsed<std::int32_t> ParseInt(std::string_view text);

/// The numbers of a line, with anything but a number between them.
std::vector<double> NumbersOf(std::string_view line);

/// The same line by line. A line feed at the end of the text begins no further line.
std::vector<std::vector<double>> NumberLinesOf(std::string_view text);

}  // namespace SampleFiles
