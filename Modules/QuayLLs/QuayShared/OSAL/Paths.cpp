#include "OSAL/Paths.h"

namespace OSAL {

namespace {
constexpr const char* separators = "/\\";
}  // namespace

std::string DirectoryOf(const std::string& path) {
    const auto last = path.find_last_of(separators);
    return last == std::string::npos ? std::string() : path.substr(0, last + 1);
}

std::string FileNameOf(const std::string& path) {
    const auto last = path.find_last_of(separators);
    return last == std::string::npos ? path : path.substr(last + 1);
}

std::string StemOf(const std::string& name) {
    return name.substr(0, name.rfind('.'));
}

void NormalizePath(std::string& path) {
    std::string normal;
    for (const char c : path) {
        const char separator = c == '/' ? '\\' : c;
        if (separator != '\\' || normal.empty() || normal.back() != '\\') normal += separator;
    }
    path = std::move(normal);
}

}  // namespace OSAL
