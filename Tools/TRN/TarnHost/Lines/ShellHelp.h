// What the shell knows of the command language: help and completion, out of the one table of keys.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TarnHost {

/// How to begin.
std::string HelpText();

/// Every key under its heading.
std::string KeyListText();

/// One key: argument, values, help; "keys" lists them all. Nearby keys when there is none of that name; "-" may be left
/// out.
std::string HelpText(std::string_view key);

/// "; did you mean 'NAME'?" for the first word of `line` that begins as a key does, else for its first word; empty when
/// no key and no command of the shell is near.
std::string Meant(std::string_view line);

/// Ends that a text can take: whole replacements of its last word.
struct Completion {
    std::vector<std::string> candidates;  ///< 200 at most, sorted
    std::size_t more = 0;                 ///< that aren't among them
    std::string start;                    ///< what all have in common
};

/// @return keys, values of the key before, entries of folders, the shell's own commands
Completion Complete(std::string_view beforeCursor);

}  // namespace TarnHost
