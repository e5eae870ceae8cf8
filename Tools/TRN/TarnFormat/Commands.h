// What tarn-format can do: its own commands, and the classes that a command of a profile may name.
#pragma once

#include <vector>

#include "CmdProcessor/CmdProcessor.h"

namespace TarnFormat {

/// "-pack" and "-unpack", with their keys.
std::vector<CountedPtr<CmdProcessor::ICommand>> OwnCommands();

/// The options that are read before any command runs, as the help pages show them.
std::vector<CountedPtr<CmdProcessor::ICommand>> OptionNotes();

/// Makes the classes Print, Set, Format, Pack and Unpack known to the command factory; once in a process.
void RegisterClasses();

}  // namespace TarnFormat
