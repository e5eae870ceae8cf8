// Folders for what a program needs only while it runs.
#pragma once

#include <cstdint>
#include <string>

#include "OSAL/Outcome.h"

namespace OSAL {

/// An empty folder of this user's alone, among the system's temporary files; gone with its owner, content and all. What
/// a process that was killed left goes with the next folder of its kind.
class ScratchFolder {
public:
    /// @param kind  begins the folder's name; only such folders have names that do
    static Outcome<ScratchFolder> Make(const std::string& kind);
    ~ScratchFolder();
    ScratchFolder(ScratchFolder&& other) noexcept;
    ScratchFolder& operator=(ScratchFolder&&) = delete;

    const std::string& Path() const { return m_path; }

private:
    ScratchFolder(std::string path, std::intptr_t lock) : m_path(std::move(path)), m_lock(lock) {}

    std::string m_path;
    std::intptr_t m_lock;
};

}  // namespace OSAL
