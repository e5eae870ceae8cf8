#include "Captures/CaptureFolder.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "OSAL/OSAL.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;

std::string SystemText(int error) {
    return std::generic_category().message(error);
}

std::string SkipReason(const fs::path& folder, const std::string& name) {
    if (std::string missing = MissingParameter(name); !missing.empty()) return missing;
    std::error_code error;
    const auto type = fs::status(folder / name, error).type();
    if (type == fs::file_type::directory) return "is a folder";
    if (fs::exists(folder / name, error) && type != fs::file_type::regular) return "is no regular file";
    if (::access((folder / name).c_str(), R_OK) != 0) return "can't be read: " + SystemText(errno);
    return {};
}

}  // namespace

std::string MissingParameter(std::string_view name) {
    static constexpr std::array<std::string_view, 4> keys = {"BAND_", "CHANNEL_", "BW_", "CHAIN_"};
    for (const std::string_view key : keys) {
        const std::string keyText(key);
        const auto found = name.find(key);
        if (found == std::string_view::npos) return "has no " + keyText + " in its name";
        const auto value = found + key.size();
        const auto end = name.find('_', value);
        if (end == value || value == name.size()) return "has no value behind " + keyText + " in its name";
        if (end == std::string_view::npos) return "has no \"_\" behind the value of " + keyText + " in its name";
    }
    return {};
}

OSAL::Outcome<std::vector<FolderEntry>> ListCaptures(const fs::path& folder) {
    std::error_code error;
    const std::string quoted = "'" + folder.string() + "'";
    if (!fs::exists(folder, error)) return OSAL::Refusal{"there is no folder " + quoted};
    if (!fs::is_directory(folder, error)) return OSAL::Refusal{quoted + " is no folder"};
    if (::access(folder.c_str(), R_OK | X_OK) != 0)
        return OSAL::Refusal{"can't read the folder " + quoted + ": " + SystemText(errno)};
    std::vector<FolderEntry> entries;
    for (const std::string& name : OSAL::ListDirectory(folder.string()))
        entries.push_back({name, SkipReason(folder, name)});
    return entries;
}

std::string WhyNotWritable(const fs::path& folder) {
    const fs::path result = folder / "result.csv";
    std::error_code error;
    if (fs::is_directory(result, error)) return "result.csv is a folder";
    const fs::path& checked = fs::exists(result, error) ? result : folder;
    return ::access(checked.c_str(), W_OK) == 0 ? std::string() : SystemText(errno);
}

}  // namespace TarnHost
