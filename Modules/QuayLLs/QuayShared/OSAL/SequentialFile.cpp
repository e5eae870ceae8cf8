#include "OSAL/SequentialFile.h"

#include <array>
#include <string_view>

#include "OSAL/Files.h"

namespace OSAL {

namespace {

/// An open file, closed at the end of each call.
struct File {
    File(const std::string& path, unsigned mode, bool openExisting) : handle(OpenFile(path, mode, openExisting)) {}
    ~File() { CloseFile(handle); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const FileHandle handle;
};

}  // namespace

std::int64_t SequentialFile::Read(void* buffer, std::size_t size) {
    const File file(m_path, ReadOnly, true);
    std::size_t got = 0;
    if (file.handle == InvalidFile || ReadFile(file.handle, m_position, buffer, size, got) != Success) return -1;
    m_position += got;
    return static_cast<std::int64_t>(got);
}

std::int64_t SequentialFile::ReadLine(std::string& out) {
    out.clear();
    const File file(m_path, ReadOnly, true);
    if (file.handle == InvalidFile) return -1;
    std::array<char, 260> piece;
    bool ended = false;
    while (!ended) {
        std::size_t count = 0;
        if (ReadFile(file.handle, m_position + out.size(), piece.data(), piece.size(), count) != Success) return -1;
        if (count == 0) break;
        const std::string_view text(piece.data(), count);
        const auto lineFeed = text.find('\n');
        ended = lineFeed != std::string_view::npos;
        out += text.substr(0, lineFeed);
    }
    if (!ended && out.empty()) return -1;
    m_position += out.size() + (ended ? 1 : 0);
    if (ended && out.ends_with('\r')) out.pop_back();
    return static_cast<std::int64_t>(out.size());
}

std::int64_t SequentialFile::Write(const void* data, std::size_t size, bool fromStart) {
    const File file(m_path, fromStart ? ReadWrite : Append, !fromStart);
    std::size_t written = 0;
    if (WriteFile(file.handle, data, size, written) != Success) return -1;
    return static_cast<std::int64_t>(written);
}

}  // namespace OSAL
