// A folder for one test, gone with it.
#pragma once

#include <gtest/gtest.h>

#include "Support/TempFolder.h"

namespace fs = std::filesystem;

class Files : public testing::Test {
protected:
    std::string Make(const std::string& name, const std::string& text) const { return m_temp.Write(name, text); }
    static std::string TextOf(const std::string& path) { return Support::ReadText(path); }

    const Support::TempFolder m_temp;
    const std::string m_folder = m_temp.Path().string() + "/";
};
