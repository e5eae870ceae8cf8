// Numbers as the answers write them, plain and JSON alike. The locale plays no part.
#pragma once

#include <span>
#include <string>
#include <string_view>

/// Appends one number as a default output stream writes it: six significant digits, general notation; "inf", "nan" and
/// "1e+06" as the stream writes them.
void AppendStreamText(std::string& out, double value);

/// Appends one number as the C format "%f" writes it, for every double: six digits behind the point, rounded to the
/// nearest, ties to even on the exact value; no exponent; "inf", "-inf", "nan" and "-nan".
void AppendFixedText(std::string& out, double value);

/// The values with `separator` between two, none behind the last.
void AppendStreamList(std::string& out, std::span<const double> values, std::string_view separator);
void AppendFixedList(std::string& out, std::span<const double> values, std::string_view separator);
