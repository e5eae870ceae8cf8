#include "Captures/CaptureFolder.h"

#include <fstream>
#include <system_error>

#include "CaptureName.h"
#include "Console/ResultTable.h"
#include "OSAL/Files.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;

std::string SkipReason(const fs::path& folder, const std::string& name) {
    if (std::string missing = MissingParameter(name); !missing.empty()) return missing;
    std::error_code error;
    const auto type = fs::status(folder / name, error).type();
    if (type == fs::file_type::directory) return "is a folder";
    if (fs::exists(folder / name, error) && type != fs::file_type::regular) return "is no regular file";
    const std::string trouble = OSAL::AccessTrouble((folder / name).string(), OSAL::Access::Read);
    return trouble.empty() ? trouble : "can't be read: " + trouble;
}

}  // namespace

std::string MissingParameter(std::string_view name) {
    for (const std::string_view key : SampleFiles::NameKeys) {
        if (!SampleFiles::NameParameter(name, key).empty()) continue;
        const std::string place = std::string(key) + " in its name";
        const auto found = name.find(key);
        if (found == std::string_view::npos) return "has no " + place;
        const auto value = name.substr(found + key.size());
        if (value.empty() || value.starts_with('_')) return "has no value behind " + place;
        return "has no \"_\" behind the value of " + place;
    }
    return {};
}

OSAL::Outcome<CaptureFolder> ListCaptures(const fs::path& folder, const std::function<bool()>& isWanted) {
    constexpr std::size_t toldOf = 20;
    std::error_code error;
    const std::string quoted = "'" + folder.string() + "'";
    if (!fs::exists(folder, error)) return OSAL::Refusal{"there is no folder " + quoted};
    if (!fs::is_directory(folder, error)) return OSAL::Refusal{quoted + " is no folder"};
    if (OSAL::IsLink(folder.string())) return OSAL::Refusal{quoted + " is a link"};
    if (const std::string trouble = OSAL::AccessTrouble(folder.string(), OSAL::Access::List); !trouble.empty())
        return OSAL::Refusal{"can't read the folder " + quoted + ": " + trouble};
    CaptureFolder found;
    for (std::string& name : OSAL::ListDirectory(folder.string())) {
        if (name.starts_with('.')) continue;
        if (!isWanted()) return OSAL::Refusal{"interrupted"};
        const std::string reason = SkipReason(folder, name);
        if (reason.empty())
            found.files.push_back(std::move(name));
        else if (++found.skippedCount <= toldOf)
            found.skipped.push_back("'" + name + "': " + reason);
    }
    return found;
}

OSAL::Outcome<> CheckResultPlace(const fs::path& folder, ResultPlace place) {
    const fs::path result = folder / "result.csv";
    const std::string refused = "can't write '" + result.string() + "': ";
    std::error_code error;
    const auto type = fs::symlink_status(result, error).type();
    if (type == fs::file_type::directory) return OSAL::Refusal{refused + "result.csv is a folder"};
    if (type == fs::file_type::symlink || OSAL::IsLink(result.string())) return OSAL::Refusal{refused + "it is a link"};
    if (type != fs::file_type::not_found && type != fs::file_type::regular)
        return OSAL::Refusal{refused + "it is no regular file"};
    if (const std::string trouble = OSAL::AccessTrouble(folder.string(), OSAL::Access::Fill); !trouble.empty())
        return OSAL::Refusal{refused + trouble};
    if (type == fs::file_type::not_found || place.overwrite) return {};
    std::string start(resultHeader.size(), '\0');
    std::ifstream(result, std::ios::binary).read(start.data(), static_cast<std::streamsize>(start.size()));
    if (start == resultHeader) return {};
    return OSAL::Refusal{"'" + result.string() + "' holds no results of an analysis; --force overwrites it"};
}

}  // namespace TarnHost
