// A folder for one test, gone with it.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

class Files : public testing::Test {
protected:
    Files() {
        std::string pattern = fs::temp_directory_path() / "osal-XXXXXX";
        m_folder = std::string(mkdtemp(pattern.data())) + "/";
    }
    ~Files() override { fs::remove_all(m_folder); }

    std::string Make(const std::string& name, const std::string& text) const {
        std::ofstream(m_folder + name, std::ios::binary) << text;
        return m_folder + name;
    }
    static std::string TextOf(const std::string& path) {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    std::string m_folder;
};
