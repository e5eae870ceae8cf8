#include "OSAL/WholeFile.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace OSAL {
namespace {

namespace fs = std::filesystem;

std::error_code Write(const fs::path& path, std::string_view content) {
    errno = 0;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (file) return {};
    return errno != 0 ? std::error_code(errno, std::generic_category()) : std::make_error_code(std::errc::io_error);
}

/// Where the content goes in the end: the target of a link, be it there or not.
fs::path Resolved(fs::path path) {
    constexpr int longestChain = 16;
    std::error_code error;
    for (int k = 0; k < longestChain && fs::is_symlink(path, error); ++k)
        path = path.parent_path() / fs::read_symlink(path, error);
    return path;
}

}  // namespace

std::optional<std::string> WriteWholeFile(const fs::path& path, std::string_view content) {
    const auto failed = [&](const std::error_code& error) {
        return "can't write '" + path.string() + "': " + error.message();
    };
    std::error_code error;
    const fs::path target = Resolved(path);
    const fs::file_status status = fs::status(target, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        error = fs::is_directory(status) ? std::make_error_code(std::errc::is_a_directory) : Write(target, content);
        return error ? std::optional(failed(error)) : std::nullopt;
    }
    const fs::path part = target.parent_path() / ("." + target.filename().string() + ".part");
    error = Write(part, content);
    if (!error) fs::rename(part, target, error);
    if (!error) return std::nullopt;
    std::error_code ignored;
    fs::remove(part, ignored);
    return failed(error);
}

}  // namespace OSAL
