#include "OSAL/SequentialFile.h"

#include <array>
#include <cstdio>
#include <memory>
#include <string_view>

namespace OSAL {

namespace {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

/// Null when it can't be opened or has no such position.
File OpenAt(const std::string& path, std::int64_t position) {
    File file(std::fopen(path.c_str(), "rb"));
    if (file && std::fseek(file.get(), static_cast<long>(position), SEEK_SET) != 0) file.reset();
    return file;
}

}  // namespace

std::int64_t SequentialFile::Read(void* buffer, std::size_t size) {
    const auto file = OpenAt(m_path, m_position);
    if (!file) return -1;
    const auto count = static_cast<std::int64_t>(std::fread(buffer, 1, size, file.get()));
    if (std::ferror(file.get())) return -1;
    m_position += count;
    return count;
}

std::int64_t SequentialFile::ReadLine(std::string& out) {
    out.clear();
    const auto file = OpenAt(m_path, m_position);
    if (!file) return -1;
    std::array<char, 260> piece;
    bool ended = false;
    while (!ended) {
        const auto count = std::fread(piece.data(), 1, piece.size(), file.get());
        if (count == 0) break;
        const std::string_view text(piece.data(), count);
        const auto lineFeed = text.find('\n');
        ended = lineFeed != std::string_view::npos;
        out += text.substr(0, lineFeed);
    }
    if (std::ferror(file.get()) || (!ended && out.empty())) return -1;
    m_position += static_cast<std::int64_t>(out.size()) + (ended ? 1 : 0);
    if (ended && out.ends_with('\r')) out.pop_back();
    return static_cast<std::int64_t>(out.size());
}

std::int64_t SequentialFile::Write(const void* data, std::size_t size, bool fromStart) {
    File file(std::fopen(m_path.c_str(), fromStart ? "wb" : "ab"));
    if (!file) return -1;
    const auto count = std::fwrite(data, 1, size, file.get());
    const bool closed = std::fclose(file.release()) == 0;  // the last bytes may fail here
    return count == size && closed ? static_cast<std::int64_t>(count) : -1;
}

}  // namespace OSAL
