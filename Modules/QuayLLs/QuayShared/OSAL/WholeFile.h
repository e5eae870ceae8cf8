// Files that are written whole or not at all.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace OSAL {

/// Writes beside the file's place and renames, so that a failure leaves the file before as it was. A link is followed;
/// a device or pipe is written to and never replaced.
/// @return "can't write '<path>': <the system's reason>" when it failed
std::optional<std::string> WriteWholeFile(const std::filesystem::path& path, std::string_view content);

}  // namespace OSAL
