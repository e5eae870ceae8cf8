// The file behind the flow trace.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>

#include "OSAL/Files.h"

namespace Streams {

/// A stream into a file that the opening itself refuses when it is a link, and that is made for the user alone.
/// Unbuffered: what was written is in the file, also behind a crash. `tellp` is the size of the file now, whoever
/// writes to it. Thread: one at a time.
class LogFile : public std::ostream {
public:
    LogFile();
    ~LogFile() override;

    /// Opens the file, or another one in the place of it; the stream is then good, or in the failed state.
    /// With `std::ios_base::app` each write goes to the end, also while another process writes; else it is emptied.
    void Open(const std::string& path, std::ios_base::openmode mode);
    void Close();

private:
    class Buffer final : public std::streambuf {
    public:
        OSAL::FileHandle file = OSAL::InvalidFile;

    protected:
        int_type overflow(int_type c) override;
        std::streamsize xsputn(const char* text, std::streamsize size) override;
        pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode which) override;
    };

    Buffer m_buffer;
};

}  // namespace Streams
