// Scratch folders by mkdtemp, each held by a lock that ends with its process.
#include "OSAL/ScratchFolder.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "OSAL/posix/Descriptor.h"

namespace OSAL {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view randomPart = "-XXXXXX";

/// None when it is another's, a link, or no folder.
Descriptor OpenOwn(const fs::path& folder) {
    Descriptor file(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status;
    return file && fstat(file.Get(), &status) == 0 && status.st_uid == geteuid() ? std::move(file) : Descriptor();
}

enum class Lock { Taken, AnothersOrGone, NotToBeHad };
Lock TakeLock(int folder) {
    struct stat status;
    if (flock(folder, LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK ? Lock::AnothersOrGone : Lock::NotToBeHad;
    return fstat(folder, &status) == 0 && status.st_nlink > 0 ? Lock::Taken : Lock::AnothersOrGone;
}

void RemoveLeftOvers(const fs::path& place, const std::string& kind) {
    std::error_code error, ignored;
    for (fs::directory_iterator entry(place, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with(kind + "-") || name.size() != kind.size() + randomPart.size()) continue;
        const Descriptor folder = OpenOwn(entry->path());
        if (folder && TakeLock(folder.Get()) == Lock::Taken) fs::remove_all(entry->path(), ignored);
    }
}

}  // namespace

Outcome<ScratchFolder> ScratchFolder::Make(const std::string& kind) {
    constexpr int attempts = 10;  // another's look for left-overs may be faster than the lock
    std::error_code error;
    const fs::path place = fs::temp_directory_path(error);
    const Refusal refusal{"can't make a folder in '" + place.string() + "' (TMPDIR names another place)"};
    if (error) return refusal;
    RemoveLeftOvers(place, kind);
    for (int k = 0; k < attempts; ++k) {
        std::string path = (place / kind).string().append(randomPart);
        if (!mkdtemp(path.data())) break;
        Descriptor folder = OpenOwn(path);
        if (folder && TakeLock(folder.Get()) != Lock::AnothersOrGone) return ScratchFolder(path, folder.Release());
    }
    return refusal;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    if (!m_path.empty()) fs::remove_all(m_path, ignored);
    const Descriptor closed(static_cast<int>(m_lock));
}

ScratchFolder::ScratchFolder(ScratchFolder&& other) noexcept
    : m_path(std::exchange(other.m_path, {})), m_lock(std::exchange(other.m_lock, -1)) {}

}  // namespace OSAL
