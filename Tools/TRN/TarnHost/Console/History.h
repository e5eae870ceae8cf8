// The lines that a person typed, kept for the next time.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace TarnHost {

/// The last `most` lines of the file, each that stands there again only where it stands last. Empty when there is none.
std::vector<std::string> ReadHistory(const std::string& file, std::size_t most);

/// Adds the line at the file's end in one write, so that two shells lose none of each other's lines and an end by force
/// loses none at all. The file is made for the user alone; a link is refused. What fails costs the line only.
void AppendHistory(const std::string& file, const std::string& line);

}  // namespace TarnHost
