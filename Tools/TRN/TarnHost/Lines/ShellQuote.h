// A program's arguments as a person could type them.
#pragma once

#include <string>
#include <vector>

namespace TarnHost {

/// "tarn" and the arguments, each in single quotes where a shell would take it apart.
std::string CommandText(const std::vector<std::string>& arguments);

}  // namespace TarnHost
