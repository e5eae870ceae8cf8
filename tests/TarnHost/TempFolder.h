// A folder that goes away with all its content.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tarn-host-XXXXXX").string();
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

private:
    std::filesystem::path m_path;
};
