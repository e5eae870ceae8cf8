// The program from its arguments to its exit status.
#pragma once

#include <string>
#include <vector>

namespace TarnHost {

/// @param arguments  without the program's name
/// @return the exit status
int Main(std::vector<std::string> arguments);

}  // namespace TarnHost
