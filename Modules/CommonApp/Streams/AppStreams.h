// The streams that all modules of a process share: where errors, output and traces go.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "OSAL/Locks.h"
#include "SingletonSlots.h"
#include "Streams/DebugPrint.h"
#include "Streams/LogFile.h"
#include "Streams/Streams.h"

namespace Streams {

/// Hears what goes wrong while the system works, also where no answer tells it.
class IErrorListener {
public:
    /// One message of the flow trace at error level. Thread: any.
    virtual void OnError(const char* function, const std::string& message) = 0;

protected:
    ~IErrorListener() = default;
};

/// The one object of the process. A host sets the pointers; they belong to the host. Reached through the static
/// accessors, or whole through `SingletonWrapper<AppStreams>`.
/// Thread: `GetLock` guards `logStream` and `logPath`; the other fields are set at start-up.
class AppStreams {
public:
    static constexpr const char* SingletonName = "Streams::AppStreams";

    /// Writes lines, each behind the milliseconds since start-up, to the trace stream.
    class StreamDevice : public IOutputDevice {
    public:
        void Write(const char* text) override;

    private:
        SyncObjectsOSAL::MutexOSAL m_lock;
    };

    AppStreams() = default;
    ~AppStreams();
    AppStreams(const AppStreams&) = delete;
    AppStreams& operator=(const AppStreams&) = delete;

    // Each gives the stream, or the null stream while there is none.
    static std::ostream& GetError();
    static std::ostream& GetOutput();
    static std::ostream& GetTrace();
    static std::ostream& GetLog();
    static std::istream& GetInput();
    /// The debug stream when the mask has a bit of `level`; else, or without one, the detail stream.
    static std::ostream& GetDebug(std::uint64_t level);
    static std::ostream& GetDebug();
    static std::string GetLogPath();
    static SyncObjectsOSAL::ILock& GetLock();

    /// Opens the flow trace file, or another one in its place; true when it is open. A failed opening leaves a log
    /// stream in the failed state; a path that is a link changes nothing.
    static bool OpenLogFile(const std::string& path, std::ios_base::openmode mode = std::ios_base::out);
    static void CloseLogFile();

    std::ostream* errorStream = nullptr;
    std::ostream* debugStream = nullptr;
    std::ostream* outputStream = nullptr;
    std::ostream* detailStream = nullptr;
    std::ostream* traceStream = nullptr;
    /// Atomic, so that asking whether there is a log costs a load and no lock.
    std::atomic<std::ostream*> logStream{nullptr};
    /// Hears the error lines of the flow trace, with a log or without. Belongs to the host.
    std::atomic<IErrorListener*> errorListener{nullptr};
    std::ostream* reservedStreams[2] = {nullptr, nullptr};
    std::istream* inputStream = nullptr;
    null_ostream<> nullOut;
    null_istream<> nullIn;
    std::uint64_t debugMask = 0;
    IOutputDevice* device = &m_defaultDevice;
    SyncObjectsOSAL::MutexOSAL lock;
    std::string logPath;
    /// Number of the next rotated log file; here, so that the modules of a process don't overwrite each other's.
    unsigned rotationCounter = 0;

private:
    StreamDevice m_defaultDevice;
    std::unique_ptr<LogFile> m_ownLog;
};

/// Writes one line of the flow trace, under the lock of the caller; moves a file of 50 MiB away first.
/// @param path  file of `stream`; the rotated one gets a number before its ".txt"
void WriteLogLine(unsigned level, const char* file, const char* function, const std::string& message,
                  std::ostream& stream, const std::string& path);

/// "[OEMERROR]" and its like; empty for what is no level.
const char* LevelTag(unsigned level);

/// `text` with blanks behind it up to `width`; longer texts stay whole.
std::string PaddedRight(std::string text, std::size_t width);

/// Bytes as two-digit hexadecimal numbers, 16 a line, on request with their characters behind them.
std::string DumpHex(const void* bytes, std::size_t length, bool withText);

}  // namespace Streams
