// Answers of the plug-in made readable: units on numbers, tables for peaks, a summary for thousands of numbers.
#pragma once

#include <string>

namespace TarnHost {

/// @param line    the command line that was run; only lines of a single key are known
/// @param output  its answer
/// @return text that ends in a line end; the answer itself where there is nothing better
std::string Readable(const std::string& line, const std::string& output);

}  // namespace TarnHost
