#include "DataFolder.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "CmdLine/CmdLine.h"
#include "Guard.h"
#include "KeyTable.h"
#include "Messages.h"
#include "OSAL/WholeFile.h"

namespace TarnServe {
namespace {

namespace fs = std::filesystem;

/// Never the beginning of a name that a request can say.
constexpr const char* stagePrefix = ".capture-";

OSAL::Refusal BadName(const std::string& name) {
    return {"'" + name.substr(0, 80) + "' isn't a file name: letters, digits, '-', '_' and '.', 64 at the most"};
}

bool NamesFile(const TarnKeys::KeyRow* key) {
    return key &&
           (key->argument.kind == TarnKeys::ArgumentKind::File || key->argument.kind == TarnKeys::ArgumentKind::Folder);
}

}  // namespace

OSAL::Outcome<DataFolder> DataFolder::Open(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!error && !fs::is_directory(folder, error)) error = std::make_error_code(std::errc::not_a_directory);
    if (error) return OSAL::Refusal{"can't use the folder '" + folder.string() + "': " + error.message()};
    const fs::path whole = fs::canonical(folder, error);
    // a snapshot's argument is split at commas, and a line knows no escape for a double quote
    if (whole.string().find_first_of(",\"") != std::string::npos)
        return OSAL::Refusal{"the folder '" + whole.string() + "' has a comma or a double quote in its name"};
    return DataFolder(whole);
}

OSAL::Outcome<std::string> DataFolder::Place(const std::string& line) const {
    CmdLine::TokenList tokens = CmdLine::Tokenize(line);
    bool isName = false;
    for (std::string& token : tokens) {
        if (token.find_first_of("/\\") != std::string::npos)
            return OSAL::Refusal{"'" + token.substr(0, 80) + "': a line from the network names files, never paths"};
        if (isName) {
            // front-end values may follow the name behind a comma
            const std::string name = token.substr(0, token.find(','));
            if (!IsFileName(name)) return BadName(name);
            std::error_code ignored;
            if (fs::is_symlink(m_folder / token, ignored) || fs::is_symlink(m_folder / name, ignored))
                return OSAL::Refusal{"'" + name + "' is a link"};
            token.insert(0, (m_folder / "").string());
        }
        isName = !isName && NamesFile(TarnKeys::FindKey(token));
    }
    return CmdLine::JoinTokens(tokens);
}

std::string DataFolder::Hide(std::string text) const {
    const std::string prefix = (m_folder / "").string();
    for (std::size_t at = 0; (at = text.find(prefix, at)) != std::string::npos;)
        text.erase(at, prefix.size());
    return text;
}

std::vector<FileEntry> DataFolder::List() const {
    std::vector<FileEntry> files;
    std::error_code error;
    for (fs::directory_iterator entry(m_folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        const std::string name = entry->path().filename().string();
        if (!IsFileName(name) || entry->is_symlink(ignored) || !entry->is_regular_file(ignored)) continue;
        files.push_back({name, entry->file_size(ignored), UtcText(entry->last_write_time(ignored))});
    }
    std::ranges::sort(files, {}, &FileEntry::name);
    return files;
}

OSAL::Outcome<fs::path> DataFolder::Existing(const std::string& name) const {
    if (!IsFileName(name)) return BadName(name);
    std::error_code error;
    const fs::path path = m_folder / name;
    if (fs::is_symlink(path, error) || !fs::is_regular_file(path, error))
        return OSAL::Refusal{"there is no file '" + name + "'"};
    return path;
}

OSAL::Outcome<std::string> DataFolder::Read(const std::string& name) const {
    const auto path = Existing(name);
    if (!path) return path.Why();
    std::ifstream file(*path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file || text.fail()) return OSAL::Refusal{"can't read '" + name + "'"};
    return std::move(text).str();
}

OSAL::Outcome<std::string> DataFolder::StageFor(const std::string& name) const {
    const auto file = Existing(name);
    if (!file) return file.Why();
    const fs::path stage = m_folder / (stagePrefix + name);
    std::error_code error;
    fs::remove_all(stage, error);
    if (!error) fs::create_directory(stage, error);
    if (!error) fs::create_symlink(*file, stage / name, error);
    if (error) return OSAL::Refusal{"'" + name + "' can't be put before the plug-in: " + error.message()};
    return stage.string();
}

bool DataFolder::TakeResultOf(const std::string& name) const {
    const std::string stage = stagePrefix + name;
    const std::string table = ReadOwn(stage + "/result.csv");
    std::error_code ignored;
    fs::remove_all(m_folder / stage, ignored);
    return table.find("\n" + name + ",") != std::string::npos;
}

std::string DataFolder::ReadOwn(const std::string& name) const {
    std::ifstream file(m_folder / name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return std::move(text).str();
}

OSAL::Outcome<> DataFolder::Write(const std::string& name, std::string_view content) const {
    if (!IsFileName(name)) return BadName(name);
    const auto written = OSAL::WriteWholeFile(m_folder / name, content);
    if (!written) return OSAL::Refusal{Hide(written.Reason())};
    return {};
}

OSAL::Outcome<> DataFolder::Remove(const std::string& name) const {
    const auto path = Existing(name);
    if (!path) return path.Why();
    std::error_code error;
    fs::remove(*path, error);
    if (error) return OSAL::Refusal{"can't remove '" + name + "': " + error.message()};
    return {};
}

}  // namespace TarnServe
