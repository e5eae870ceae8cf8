// The program's own arguments.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Commands/Commands.h"
#include "Diagnostics.h"

namespace TarnHost {

/// What the arguments ask for: a command, or a text and the end.
struct Request {
    HostOptions host;
    DiagnosticOptions diagnostics;
    std::optional<CommandOptions> command;
    std::string text;             ///< help or version for standard output, or the reason for standard error
    ExitStatus status = Success;  ///< of a request without a command
};

/// @param arguments  without the program's name
Request ParseArguments(std::vector<std::string> arguments);

}  // namespace TarnHost
