// Paths as this system writes them.
#include "OSAL/Paths.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "OSAL/Errors.h"

namespace OSAL {

std::string NativePath(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

int GetModuleDirectory(std::string& out) {
    std::array<char, PATH_MAX> buffer;
    const auto length = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) return Failure;
    out = DirectoryOf(std::string(buffer.data(), static_cast<std::size_t>(length)));
    return Success;
}

}  // namespace OSAL
