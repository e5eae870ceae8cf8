// The flow trace: one line a message into the process-wide log, and the scope that each operation opens.
#pragma once

#include "Format.h"
#include "Publisher/Publisher.h"

namespace Streams {

/// Levels of the flow trace. All are written; the level only makes the tag of the line.
enum TraceLevel : unsigned { TraceError = 1, TraceWarning = 2, TraceInfo = 4, TraceDebug = 8 };

/// True when there is a log stream, or a listener for a message at error level, so that building one is worth it.
/// Costs two loads.
bool IsTraceOn(unsigned level = TraceInfo) noexcept;

/// Writes one line under the lock of the process-wide streams; drops it when there is no healthy log stream.
/// `file` is not written. Never throws.
void WriteTrace(unsigned level, const char* file, const char* function, const std::string& message) noexcept;

/// Tells of a failure that the caller's answer doesn't: a line at error level in the log, and one on the error stream
/// of the process, where the host finds it. Never throws.
void ReportFailure(const char* file, const char* function, const std::string& message) noexcept;

/// Logs `text` under the operation's name and throws it as a Common::Exception.
[[noreturn]] void ThrowLogged(const char* function, const std::string& text, unsigned level = TraceError);

/// Where an operation stands; all texts outlive its scope.
struct TracePlace {
    const char* file;
    unsigned line;
    const char* function;   // qualified name
    const char* signature;  // the full one
};

/// The Enter and Exit lines of an operation, and its published scope when somebody listens.
class TraceScope {
public:
    explicit TraceScope(const TracePlace& place) noexcept;
    ~TraceScope();
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;

private:
    void Publish(const TracePlace& place) noexcept;

    const char* m_file;
    const char* m_function;
    Publisher::PublishScope m_published;
};

}  // namespace Streams

/// Opens the trace scope of an operation: `TRACE_SCOPE("CLmnSA::AddSweep");` as its first line. TRACE below uses the
/// name given here.
#define TRACE_SCOPE(name)                                  \
    static constexpr const char* traceFunctionName = name; \
    const ::Streams::TraceScope traceScope({__FILE__, __LINE__, traceFunctionName, __PRETTY_FUNCTION__})

/// Reports a failure as `ReportFailure` does, under the name of the operation's scope.
#define REPORT_FAILURE(message) ::Streams::ReportFailure(__FILE__, traceFunctionName, (message))

/// One trace line, `message` being anything that converts to a std::string: it is only evaluated when a log is open.
#define TRACE(level, message)                                                                    \
    do {                                                                                         \
        if (::Streams::IsTraceOn(level))                                                         \
            ::Streams::WriteTrace((level), __FILE__, traceFunctionName, ::std::string(message)); \
    } while (false)
