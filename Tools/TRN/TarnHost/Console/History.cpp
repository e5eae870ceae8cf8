#include "Console/History.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

namespace TarnHost {
namespace {

constexpr off_t longestRead = 1 << 20;  ///< of the file's end

int OpenHistory(const std::string& file, int flags) {
    const int descriptor = ::open(file.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    struct stat status {};
    if (descriptor >= 0 && ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return descriptor;
    if (descriptor >= 0) ::close(descriptor);
    return -1;
}

}  // namespace

std::vector<std::string> ReadHistory(const std::string& file, std::size_t most) {
    const int descriptor = file.empty() ? -1 : OpenHistory(file, O_RDONLY);
    if (descriptor < 0) return {};
    const off_t size = ::lseek(descriptor, 0, SEEK_END);
    const off_t start = std::max<off_t>(0, size - longestRead);
    std::string text(static_cast<std::size_t>(size - start), '\0');
    const ssize_t got = ::pread(descriptor, text.data(), text.size(), start);
    ::close(descriptor);
    text.resize(got > 0 ? static_cast<std::size_t>(got) : 0);

    std::vector<std::string> all;
    std::istringstream stream(text);
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
    const int descriptor = OpenHistory(file, O_WRONLY | O_APPEND | O_CREAT);
    if (descriptor < 0) return;
    const std::string whole = line + "\n";
    [[maybe_unused]] const auto written = ::write(descriptor, whole.data(), whole.size());
    ::close(descriptor);
}

}  // namespace TarnHost
