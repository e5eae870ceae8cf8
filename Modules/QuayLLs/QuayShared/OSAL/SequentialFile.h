// A file that is read and written piece by piece, open only during each call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace OSAL {

class SequentialFile {
public:
    explicit SequentialFile(std::string path) : m_path(std::move(path)) {}

    /// Reads on from the position. @return bytes read, 0 at the end, -1 when the file can't be read
    std::int64_t Read(void* buffer, std::size_t size);
    /// Reads the next line, without its end. @return characters of the line, -1 at the end or on failure
    std::int64_t ReadLine(std::string& out);
    /// @param fromStart  true empties the file first, false appends. @return bytes written, -1 on failure
    std::int64_t Write(const void* data, std::size_t size, bool fromStart);

private:
    std::string m_path;
    std::uint64_t m_position = 0;  // of the next read
};

}  // namespace OSAL
