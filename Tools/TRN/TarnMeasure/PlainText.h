// Texts from outside (names, messages, captured data) where control characters would do harm.
#pragma once

#include <string>
#include <string_view>

namespace TarnMeasure {

/// `text` as one line that can't steer a terminal: control characters (also those of eight bits and those that turn the
/// writing direction) and bytes that are no UTF-8 become "?".
std::string Printable(std::string_view text);

/// The same, but line feeds and tabs stay.
std::string PrintableLines(std::string_view text);

/// "A|B" as "A, B".
std::string Listed(std::string_view choices);

}  // namespace TarnMeasure
