// How texts from outside (file names) look on a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TarnHost {

/// Characters of a UTF-8 text, each counted as one column wide; a stray byte counts as one.
std::size_t DisplayWidth(std::string_view text);

/// The first `count` characters.
std::string LeadingCharacters(std::string_view text, std::size_t count);

/// Order of names for a person: runs of digits by their value, so that "2" stands before "10".
bool ComesBefore(std::string_view a, std::string_view b);

}  // namespace TarnHost
