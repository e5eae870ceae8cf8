// An input that comes when it comes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "OSAL/Outcome.h"
#include "OSAL/Wakeup.h"

namespace OSAL {

/// A file, a pipe, a device or standard input, read as its bytes arrive. Thread: one at a time.
class InputStream {
public:
    static InputStream Standard();
    /// Never waits: a named pipe opens before anybody writes to it, and its end comes behind the first writer.
    /// Refused with the system's words, a folder with "it is a folder".
    static Outcome<InputStream> Open(const std::string& path);
    ~InputStream();
    InputStream(InputStream&& other) noexcept;
    InputStream& operator=(InputStream&&) = delete;

    enum class Got { Bytes, End, WokenUp, Failed };
    /// Waits for input and puts what is there, `most` bytes at most, behind `text`. Gives up once `wakeup` is set.
    Got Read(std::string& text, std::size_t most, const Wakeup& wakeup);
    /// The system's words for what failed.
    const std::string& Error() const { return m_error; }

private:
    explicit InputStream(std::intptr_t handle) : m_handle(handle) {}

    std::intptr_t m_handle;
    bool m_waitsForWriter = false;
    std::string m_error;
};

}  // namespace OSAL
