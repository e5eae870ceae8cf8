// The tests of the data folder: each has a folder of its name with its configuration and its results.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "DataFolder.h"

namespace TarnServe {

struct ArchivedTest {
    std::string name;
    std::string utc;      ///< of the last change
    std::string verdict;  ///< empty for a test that runs or that was killed
    std::vector<FileEntry> files;
};

/// Thread: one at a time.
class DesenseArchive {
public:
    explicit DesenseArchive(const DataFolder& folder) : m_folder(folder) {}

    /// Makes the folder of a new test with its configuration. Refused when there is something of that name.
    /// @param name  as IsFileName wants it
    /// @return the folder's path; behind a refusal nothing of it is left
    OSAL::Outcome<std::filesystem::path> Begin(const std::string& name, const std::string& config) const;
    /// Newest first.
    std::vector<ArchivedTest> List() const;
    OSAL::Outcome<std::string> Read(const std::string& test, const std::string& file) const;
    /// Removes a test's files and its folder.
    OSAL::Outcome<> Remove(const std::string& test) const;

    static constexpr const char* configName = "test.cfg";

private:
    /// The files of a test that are there.
    std::vector<FileEntry> FilesOf(const std::string& test) const;

    const DataFolder& m_folder;
};

}  // namespace TarnServe
