// The one folder that requests reach: names in lines become files in it, and nothing else does.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "OSAL/Outcome.h"

namespace TarnServe {

struct FileEntry {
    std::string name;
    std::uint64_t bytes = 0;
    std::string utc;  ///< of the last change
};

/// Thread: one at a time.
class DataFolder {
public:
    /// Makes the folder when it is missing.
    static OSAL::Outcome<DataFolder> Open(const std::filesystem::path& folder);

    /// The line with each file name replaced by its place in the folder. Refused when the argument of a key that names
    /// a file isn't a plain name or names a link, and when any token holds a path.
    OSAL::Outcome<std::string> Place(const std::string& line) const;
    /// The text without the folder's own path: answers name files as the client did.
    std::string Hide(std::string text) const;

    std::vector<FileEntry> List() const;
    OSAL::Outcome<std::string> Read(const std::string& name) const;
    OSAL::Outcome<> Write(const std::string& name, std::string_view content) const;
    OSAL::Outcome<> Remove(const std::string& name) const;
    /// A hidden folder with nothing but this file in it, for the key that analyses a folder of captures.
    OSAL::Outcome<std::string> StageFor(const std::string& name) const;
    /// Whether the analysis of the staged file gave a result. The stage goes.
    bool TakeResultOf(const std::string& name) const;
    /// A file of the server's own, whatever its name; empty when it can't be read.
    std::string ReadOwn(const std::string& name) const;
    std::filesystem::path PathOf(const std::string& name) const { return m_folder / name; }

private:
    explicit DataFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {}
    OSAL::Outcome<std::filesystem::path> Existing(const std::string& name) const;

    std::filesystem::path m_folder;  ///< absolute
};

}  // namespace TarnServe
