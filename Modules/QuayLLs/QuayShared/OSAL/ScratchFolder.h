// Folders for what a program needs only while it runs.
#pragma once

#include <string>

#include "OSAL/Outcome.h"

namespace OSAL {

/// An empty folder of its owner's alone, among the system's temporary files; gone with its owner, content and all.
class ScratchFolder {
public:
    /// @param kind  begins the folder's name
    static Outcome<ScratchFolder> Make(const std::string& kind);
    ~ScratchFolder();
    ScratchFolder(ScratchFolder&& other) noexcept;
    ScratchFolder& operator=(ScratchFolder&&) = delete;

    const std::string& Path() const { return m_path; }

private:
    explicit ScratchFolder(std::string path) : m_path(std::move(path)) {}

    std::string m_path;
};

}  // namespace OSAL
