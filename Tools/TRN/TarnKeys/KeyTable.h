// The command language as data: every key that a command line may hold, in the order in which keys take effect.
// Help, completion and documentation read it. The plug-in binds each key to its operation in a table of its own; a test
// holds the two equal, name for name and in order.
#pragma once

#include <span>
#include <string_view>

namespace TarnKeys {

enum class ArgumentType { None, Int, Double, Text };

struct KeyRow {
    std::string_view name;
    ArgumentType argument = ArgumentType::None;
    std::string_view placeholder;  ///< how help writes the argument, such as "FILE"; empty without one
    std::string_view values;       ///< accepted values split by "|", for completion; empty when they can't be listed
    std::string_view group;        ///< heading in help
    std::string_view help;         ///< what it does, one line, with units
};

/// All keys that the plug-in registers, in the order of their turns on a line.
std::span<const KeyRow> Keys();

/// The row of a key, whatever the case of its letters; null when there is none.
const KeyRow* FindKey(std::string_view name);

}  // namespace TarnKeys
