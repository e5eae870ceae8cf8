#include "DesenseArchive.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <vector>

#include "Desense.h"
#include "Guard.h"
#include "Messages.h"
#include "OSAL/WholeFile.h"

namespace TarnServe {
namespace {

namespace fs = std::filesystem;

/// What a test may leave; nothing else of its folder is shown or removed.
std::vector<std::string_view> FileNames() {
    std::vector<std::string_view> names(TarnMeasure::DesenseFiles.begin(), TarnMeasure::DesenseFiles.end());
    names.emplace_back(DesenseArchive::configName);
    return names;
}

bool IsPlainFile(const fs::path& path) {
    std::error_code error;
    return !fs::is_symlink(path, error) && fs::is_regular_file(path, error);
}

bool IsPlainFolder(const fs::path& path) {
    std::error_code error;
    return !fs::is_symlink(path, error) && fs::is_directory(path, error);
}

std::string VerdictOf(const std::string& json) {
    const auto result = nlohmann::json::parse(json, nullptr, false);
    const auto verdict = result.is_object() ? result.find("verdict") : result.end();
    return result.is_object() && verdict != result.end() && verdict->is_string() ? verdict->get<std::string>() : "";
}

}  // namespace

OSAL::Outcome<fs::path> DesenseArchive::Begin(const std::string& name, const std::string& config) const {
    const fs::path folder = m_folder.PathOf(name);
    std::error_code error;
    if (!fs::create_directory(folder, error))
        return OSAL::Refusal{error ? "can't make the folder '" + name + "': " + error.message()
                                   : "there is a '" + name + "' in the data folder already"};
    const auto written = OSAL::WriteWholeFile(folder / configName, config);
    if (written) return folder;
    fs::remove_all(folder, error);  // else nothing could be started under this name, nor removed
    return OSAL::Refusal{m_folder.Hide(written.Reason())};
}

std::vector<FileEntry> DesenseArchive::FilesOf(const std::string& test) const {
    std::vector<FileEntry> files;
    const fs::path folder = m_folder.PathOf(test);
    if (!IsFileName(test) || !IsPlainFolder(folder) || !IsPlainFile(folder / configName)) return files;
    for (const std::string_view name : FileNames()) {
        std::error_code error;
        const fs::path path = folder / name;
        if (!IsPlainFile(path)) continue;
        files.push_back({std::string(name), fs::file_size(path, error), UtcText(fs::last_write_time(path, error))});
    }
    return files;
}

std::vector<ArchivedTest> DesenseArchive::List() const {
    std::vector<ArchivedTest> tests;
    std::error_code error;
    for (fs::directory_iterator entry(m_folder.PathOf(""), error), end; !error && entry != end;
         entry.increment(error)) {
        ArchivedTest test{.name = entry->path().filename().string(), .utc = {}, .verdict = {}, .files = {}};
        test.files = FilesOf(test.name);
        if (test.files.empty()) continue;
        for (const FileEntry& file : test.files)
            test.utc = std::max(test.utc, file.utc);
        if (const auto result = Read(test.name, "result.json")) test.verdict = VerdictOf(*result);
        tests.push_back(std::move(test));
    }
    std::ranges::sort(tests, std::ranges::greater(), &ArchivedTest::utc);
    return tests;
}

OSAL::Outcome<std::string> DesenseArchive::Read(const std::string& test, const std::string& file) const {
    const auto files = FilesOf(test);
    if (std::ranges::find(files, file, &FileEntry::name) == files.end())
        return OSAL::Refusal{"there is no '" + file.substr(0, 80) + "' of a test '" + test.substr(0, 80) + "'"};
    std::ifstream stream(m_folder.PathOf(test) / file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    if (!stream || text.fail()) return OSAL::Refusal{"can't read '" + file + "'"};
    return std::move(text).str();
}

OSAL::Outcome<> DesenseArchive::Remove(const std::string& test) const {
    const auto files = FilesOf(test);
    if (files.empty()) return OSAL::Refusal{"there is no test '" + test.substr(0, 80) + "'"};
    const fs::path folder = m_folder.PathOf(test);
    std::error_code error;
    for (const FileEntry& file : files)
        fs::remove(folder / file.name, error);
    fs::remove(folder, error);  // keeps what somebody else put there
    if (error) return OSAL::Refusal{"can't remove '" + test + "': " + error.message()};
    return {};
}

}  // namespace TarnServe
