// The command language as data: every key that a command line may hold, in the order in which keys take effect, with
// all that a host must know of it. KeyRows.h holds the rows; the operation that each names is the plug-in's alone.
// Headings order the help text; nothing is decided by them.
#pragma once

#include <span>
#include <string_view>

namespace TarnKeys {

/// File and Folder are texts that name one.
enum class ArgumentKind { None, Int, Double, Text, File, Folder };

/// What a key is for.
enum class KeyRole {
    Sets,        ///< a value that holds until it is set again
    Acts,        ///< changes something once
    Tells,       ///< answers about the device or a setting
    ReadsOut,    ///< answers out of the last sweep
    WritesFile,  ///< writes results to the file that its argument names
    Triggers,    ///< captures a sweep
};

struct KeyArgument {
    ArgumentKind kind = ArgumentKind::None;
    std::string_view placeholder = {};  ///< how help writes it, such as "FILE"; empty without one
    std::string_view values = {};       ///< accepted values split by "|", for completion; empty if they can't be listed
};

struct KeyRow {
    std::string_view name;
    KeyRole role;
    KeyArgument argument;
    std::string_view heading;  ///< in help
    std::string_view help;     ///< what it does, one line, with units
    /// A measurement sets it itself, or its labels would be wrong behind it: it may not stand among its keys.
    bool spoilsMeasurement = false;
    std::string_view voids = {};  ///< keys, split by "|", whose values of before no longer hold behind this one
};

/// All keys that the plug-in registers, in the order of their turns on a line.
std::span<const KeyRow> Keys();

/// The row of a key, whatever the case of its letters; null when there is none.
const KeyRow* FindKey(std::string_view name);

/// True for a key that answers from, or writes, the results of the sweep before a trigger on the same line: its turn
/// comes first.
bool ReadsBeforeTrigger(const KeyRow& key);

}  // namespace TarnKeys
