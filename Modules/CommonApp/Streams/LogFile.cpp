#include "Streams/LogFile.h"

#include <utility>

namespace Streams {

LogFile::Buffer::int_type LogFile::Buffer::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char character = traits_type::to_char_type(c);
    return xsputn(&character, 1) == 1 ? c : traits_type::eof();
}

std::streamsize LogFile::Buffer::xsputn(const char* text, std::streamsize size) {
    std::size_t written = 0;
    OSAL::WriteFile(file, text, static_cast<std::size_t>(size), written);
    return static_cast<std::streamsize>(written);
}

/// Only where the stream stands: at the file's end.
LogFile::Buffer::pos_type LogFile::Buffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                                   std::ios_base::openmode) {
    std::uint64_t size = 0;
    if (offset != 0 || from != std::ios_base::cur || OSAL::FileSize(file, size) != OSAL::Success) return off_type(-1);
    return static_cast<off_type>(size);
}

LogFile::LogFile() : std::ostream(nullptr) {
    rdbuf(&m_buffer);
    setstate(failbit);
}

LogFile::~LogFile() {
    Close();
}

void LogFile::Open(const std::string& path, std::ios_base::openmode mode) {
    Close();
    const unsigned kind = mode & std::ios_base::app ? OSAL::Append : OSAL::ReadWrite;
    m_buffer.file = OSAL::OpenFile(path, kind | OSAL::NoLink | OSAL::Private, false);
    clear(m_buffer.file == OSAL::InvalidFile ? failbit : goodbit);
}

void LogFile::Close() {
    OSAL::CloseFile(std::exchange(m_buffer.file, OSAL::InvalidFile));
    setstate(failbit);
}

}  // namespace Streams
