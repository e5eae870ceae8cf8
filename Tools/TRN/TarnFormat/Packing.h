// Profiles between their two forms, file to file.
#pragma once

#include <string>

namespace TarnFormat {

// Each writes the target whole or not at all, and throws a Common::Exception* that names the file at fault.

/// XML text to the binary form.
void Pack(const std::string& source, const std::string& target);
/// The binary form to XML text that reads back as the same document; at most 1 GiB of it.
void Unpack(const std::string& source, const std::string& target);

}  // namespace TarnFormat
