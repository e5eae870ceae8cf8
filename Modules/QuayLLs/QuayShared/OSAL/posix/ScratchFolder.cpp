// Scratch folders by mkdtemp.
#include "OSAL/ScratchFolder.h"

#include <stdlib.h>

#include <filesystem>
#include <utility>

namespace OSAL {

namespace fs = std::filesystem;

Outcome<ScratchFolder> ScratchFolder::Make(const std::string& kind) {
    std::error_code error;
    const fs::path place = fs::temp_directory_path(error);
    std::string path = (place / (kind + "-XXXXXX")).string();
    if (error || !mkdtemp(path.data()))
        return Refusal{"can't make a folder in '" + place.string() + "' (TMPDIR names another place)"};
    return ScratchFolder(path);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    if (!m_path.empty()) fs::remove_all(m_path, ignored);
}

ScratchFolder::ScratchFolder(ScratchFolder&& other) noexcept : m_path(std::exchange(other.m_path, {})) {}

}  // namespace OSAL
