// The process's standard streams: what was written arrives or the failure is known.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

#include "OSAL/StandardStreams.h"

namespace TarnHost {

/// Buffered output to a standard stream. After a failure everything further is dropped.
/// Thread: writing from any.
class Output {
public:
    explicit Output(OSAL::StandardStream stream) : m_stream(stream) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// On a terminal without what could steer it, elsewhere byte for byte.
    void Write(std::string_view text);
    /// Byte for byte on a terminal too; nothing from outside may stand in it.
    void Steer(std::string_view text);
    void Flush();
    bool Ok() const { return !m_readerGone && m_error.empty(); }
    /// The other end of a pipe was closed: the reader has what it wanted.
    bool IsReaderGone() const { return m_readerGone; }
    /// The system's words for what failed; empty when nothing did.
    const std::string& Error() const { return m_error; }

    bool IsTerminal() const { return OSAL::IsTerminal(m_stream); }
    /// Width of the terminal in characters; 0 when it isn't one or doesn't tell.
    std::size_t Columns() const { return OSAL::TerminalColumns(m_stream); }

private:
    void FlushLocked();

    OSAL::StandardStream m_stream;
    std::mutex m_mutex;
    std::string m_pending;
    std::string m_error;
    bool m_readerGone = false;
};

/// Data goes to `out`, talk to `err`.
struct Console {
    Output out{OSAL::StandardStream::Output};
    Output err{OSAL::StandardStream::Error};

    /// "tarn: " and the text on a line of standard error, at once; control characters become "?".
    void Say(std::string_view text);
};

}  // namespace TarnHost
