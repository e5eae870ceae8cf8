// What a listener writes: one line of JSON a message, or a file for a browser's trace viewer.
#pragma once

#include <cstdint>
#include <string>

#include "OSAL/Files.h"
#include "OSAL/Outcome.h"
#include "Publisher/Publisher.h"

namespace QuayListener {

/// A message with what the listener knows of it.
struct Heard {
    const Publisher::PublishMessage& message;
    int depth;  // scopes of this thread that are open around it
};

/// `kind`, `action`, `function`, `file`, `line`, `elapsed_ms`, `thread`, `depth`, `arguments` and `utc` as one JSON
/// object. `kind` is "begin", "end" or "exception"; `utc` the time of the message, to the microsecond.
std::string JsonLine(const Heard& heard);

/// One event of the Chrome trace format: a scope's begin or end, or an instant. Times in microseconds.
std::string ChromeEvent(const Heard& heard);

/// The open file. Each message is with the system when `Write` returns, so that a killed program loses none, and a
/// Chrome trace has its closing bracket behind each.
/// Thread: one at a time.
class TraceFile {
public:
    /// @param path  ".json" at its end makes a Chrome trace. Refused when it is a link or can't be written
    OSAL::Outcome<> Open(const std::string& path);
    ~TraceFile() { Close(); }
    TraceFile() = default;
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;

    bool IsOpen() const { return m_file != OSAL::InvalidFile; }
    void Write(const Heard& heard);
    void Close();

private:
    /// `behind` is written too, and the next text over it.
    void Put(const std::string& text, const std::string& behind);

    OSAL::FileHandle m_file = OSAL::InvalidFile;
    bool m_isChrome = false;
    std::uint64_t m_end = 0;  ///< where the next message goes
};

}  // namespace QuayListener
