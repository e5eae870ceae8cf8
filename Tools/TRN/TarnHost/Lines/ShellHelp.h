// What the shell knows of the command language: help and completion, out of the one table of keys.
#pragma once

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

/// Ends that the text before the cursor can take: whole replacements of its last word, sorted. Keys, values of the key
/// before, entries of folders, the shell's own commands.
std::vector<std::string> Completions(std::string_view beforeCursor);

/// What all have in common at their start.
std::string CommonStart(const std::vector<std::string>& candidates);

}  // namespace TarnHost
