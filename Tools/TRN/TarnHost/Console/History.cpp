#include "Console/History.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <set>
#include <sstream>

#include "OSAL/Files.h"

namespace TarnHost {
namespace {

constexpr std::uint64_t longestRead = 1 << 20;

std::string EndOf(const std::string& file) {
    const OSAL::FileHandle handle = OSAL::OpenFile(file, OSAL::ReadOnly | OSAL::NoLink, true);
    std::uint64_t size = 0;
    std::size_t got = 0;
    std::string text;
    if (OSAL::FileSize(handle, size) == OSAL::Success) {
        text.resize(static_cast<std::size_t>(std::min(size, longestRead)));
        if (OSAL::ReadFile(handle, size - text.size(), text.data(), text.size(), got) != OSAL::Success) got = 0;
    }
    OSAL::CloseFile(handle);
    text.resize(got);
    return text;
}

}  // namespace

std::vector<std::string> ReadHistory(const std::string& file, std::size_t most) {
    std::vector<std::string> all;
    std::istringstream stream(EndOf(file));
    for (std::string line; std::getline(stream, line);)
        if (!line.empty()) all.push_back(line);
    std::vector<std::string> kept;
    std::set<std::string> seen;
    for (auto line = all.rbegin(); line != all.rend() && kept.size() < most; ++line)
        if (seen.insert(*line).second) kept.push_back(*line);
    std::ranges::reverse(kept);
    return kept;
}

void AppendHistory(const std::string& file, const std::string& line) {
    if (file.empty() || line.find('\n') != std::string::npos) return;
    const auto folder = std::filesystem::path(file).parent_path();
    std::error_code ignored;
    if (std::filesystem::create_directories(folder, ignored))
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
    const OSAL::FileHandle handle = OSAL::OpenFile(file, OSAL::Append | OSAL::NoLink | OSAL::Private, true);
    const std::string whole = line + "\n";
    std::size_t written = 0;
    OSAL::WriteFile(handle, whole.data(), whole.size(), written);
    OSAL::CloseFile(handle);
}

}  // namespace TarnHost
