// The process's standard streams: what was written arrives or the failure is known.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace TarnHost {

/// Buffered output to a file descriptor. After a failure everything further is dropped.
/// Thread: writing from any.
class Output {
public:
    explicit Output(int descriptor) : m_descriptor(descriptor) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Write(std::string_view text);
    /// A text from outside: on a terminal without what could steer it, elsewhere byte for byte.
    void WriteForeign(std::string_view text);
    void Flush();
    bool Ok() const { return !m_readerGone && m_error.empty(); }
    /// The other end of a pipe was closed: the reader has what it wanted.
    bool IsReaderGone() const { return m_readerGone; }
    /// The system's words for what failed; empty when nothing did.
    const std::string& Error() const { return m_error; }

    bool IsTerminal() const;
    /// Width of the terminal in characters; 0 when it isn't one or doesn't tell.
    std::size_t Columns() const;

private:
    void FlushLocked();

    int m_descriptor;
    std::mutex m_mutex;
    std::string m_pending;
    std::string m_error;
    bool m_readerGone = false;
};

/// Data goes to `out`, talk to `err`.
struct Console {
    Output out{1};
    Output err{2};

    /// "tarn: " and the text on a line of standard error, at once; control characters become "?".
    void Say(std::string_view text);
};

/// Puts read-only null devices where descriptors 0 to 2 are closed, so that no file opened later gets their numbers and
/// a write to a closed standard output still fails.
void OccupyStandardDescriptors();

}  // namespace TarnHost
