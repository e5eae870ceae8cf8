// A folder for one test, and whole files in it.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Support {

/// All bytes of a file; empty when there is none.
inline std::string ReadText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// The lines of all code blocks of a document.
inline std::vector<std::string> CodeLines(const std::filesystem::path& document) {
    std::ifstream text(document);
    std::vector<std::string> lines;
    bool isCode = false;
    for (std::string line; std::getline(text, line);)
        if (line.starts_with("```"))
            isCode = !isCode;
        else if (isCode)
            lines.push_back(line);
    return lines;
}

/// Goes away with all its content.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("no folder for the test");
        m_path = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(TempFolder&& other) noexcept : m_path(std::exchange(other.m_path, {})) {}
    TempFolder& operator=(TempFolder&&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::string operator/(const std::string& name) const { return (m_path / name).string(); }
    std::string Read(const std::string& name) const { return ReadText(m_path / name); }
    /// @return the path of the file
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(m_path / name, std::ios::binary) << text;
        return *this / name;
    }

private:
    std::filesystem::path m_path;
};

}  // namespace Support
