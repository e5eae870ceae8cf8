// A command that ends when a person wants it to, whatever it waits for.
#pragma once

#include <functional>
#include <optional>

#include "Console/InterruptWatch.h"

namespace TarnHost {

/// Runs `command` on a thread of its own while this one watches for signals. After the first one the command has 0.8 s
/// to end by itself, or to forget the signal; files that it finishes don't count. A second one ends the wait at once.
/// @return the command's status; nothing when it didn't end: its thread runs on, and the process has to end by
///         std::_Exit()
std::optional<ExitStatus> RunWatched(InterruptWatch& watch, std::function<ExitStatus()> command);

}  // namespace TarnHost
