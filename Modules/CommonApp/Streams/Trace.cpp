#include "Streams/Trace.h"

#include <array>

#include "Exceptions.h"
#include "Streams/AppStreams.h"

namespace Streams {

namespace {

constexpr std::streamoff rotationSize = 52428800;  // 50 MiB

/// Copies the log to its numbered name and starts it anew. False when the path has become a link.
bool Rotate(std::ostream& stream, const std::string& path) {
    static std::string refusedPath;  // a link that was met before: don't copy it again for each line
    if (path == refusedPath && OSAL::IsLink(path)) return false;
    refusedPath.clear();

    auto& counter = SingletonWrapper<AppStreams>::accessObject()->rotationCounter;
    const std::string numbered = path.substr(0, path.find(".txt")) + std::to_string(counter) + ".txt";
    OSAL::CopyFile(path, numbered, OSAL::NoLink | OSAL::Private);  // what a link leads to isn't ours to replace
    ++counter;
    if (OSAL::IsLink(path)) {
        refusedPath = path;
        return false;
    }
    if (auto* file = dynamic_cast<LogFile*>(&stream)) {
        file->Open(path, std::ios_base::out);
        file->Open(path, std::ios_base::app);  // another process may write the same file
    }
    return true;
}

void OnLockFailure(unsigned level, const char* function, const char* message) {
    if (IsTraceOn(level)) WriteTrace(level, "", function, message);
}

void OnDebugOutput(const char* text) {
    if (IsTraceOn()) WriteTrace(TraceDebug, "", "OSAL::OutputDebugString", text);
}

/// The layer below reports upward from the moment this module is loaded until it goes.
struct HookInstaller {
    HookInstaller() {
        SyncObjectsOSAL::SetFailureHook(&OnLockFailure);
        OSAL::SetDebugOutputHook(&OnDebugOutput);
    }
    ~HookInstaller() {
        SyncObjectsOSAL::SetFailureHook(nullptr);
        OSAL::SetDebugOutputHook(nullptr);
    }
};
const HookInstaller hookInstaller;

}  // namespace

const char* LevelTag(unsigned level) {
    switch (level) {
        case TraceError:
            return "[OEMERROR]";
        case TraceWarning:
            return "[OEMWARNING]";
        case TraceInfo:
            return "[OEMINFO]";
        case TraceDebug:
            return "[OEMTRACE]";
        default:
            return "";
    }
}

void WriteLogLine(unsigned level, const char*, const char* function, const std::string& message, std::ostream& stream,
                  const std::string& path) {
    if (stream.fail()) return;
    if (stream.tellp() >= std::streampos(rotationSize) && !Rotate(stream, path)) return;

    std::array<char, 64> time{};
    OSAL::FormatLocalTime("%F %a %h %T.", time.data(), time.size());
    const auto milliseconds = std::to_string(1000 + OSAL::GetTickCount() % 1000).substr(1);
    std::string line = PaddedRight(time.data(), 20) + milliseconds + " | ";
    line += PaddedRight(LevelTag(level), 12);
    line += "| ";
    line += PaddedRight(function ? function : "", 40);
    line += " | ";
    line += message;
    line += '\n';
    stream.write(line.data(), static_cast<std::streamsize>(line.size()));
    stream.flush();
}

bool IsTraceOn(unsigned level) noexcept {
    const auto* streams = SingletonWrapper<AppStreams>::peekObject();
    if (!streams) return false;
    return streams->logStream.load(std::memory_order_relaxed) ||
           (level == TraceError && streams->errorListener.load(std::memory_order_relaxed));
}

void WriteTrace(unsigned level, const char* file, const char* function, const std::string& message) noexcept {
    try {
        auto* streams = SingletonWrapper<AppStreams>::peekObject();
        if (!streams) return;
        if (auto* listener = level == TraceError ? streams->errorListener.load() : nullptr)
            listener->OnError(function, message);
        const SyncObjectsOSAL::Locked<SyncObjectsOSAL::ILock> guard(streams->lock);
        const std::string path = streams->logPath;
        if (auto* stream = streams->logStream.load()) WriteLogLine(level, file, function, message, *stream, path);
    } catch (...) {
        // A log that can't be written drops the line.
    }
}

void ReportFailure(const char* file, const char* function, const std::string& message) noexcept {
    if (IsTraceOn(TraceError)) WriteTrace(TraceError, file, function, message);
    try {
        const SyncObjectsOSAL::Locked<SyncObjectsOSAL::ILock> guard(AppStreams::GetLock());
        AppStreams::GetError() << message << std::endl;
    } catch (...) {
        // Nobody is left to tell.
    }
}

void ThrowLogged(const char* function, const std::string& text, unsigned level) {
    if (IsTraceOn(level)) WriteTrace(level, "", function, text);
    throw Common::Exception(text);
}

TraceScope::TraceScope(const TracePlace& place) noexcept : m_file(place.file), m_function(place.function) {
    if (IsTraceOn()) WriteTrace(TraceInfo, m_file, m_function, "--------------------->Enter");
    if (Publisher::IsPublishing()) Publish(place);
}

void TraceScope::Publish(const TracePlace& place) noexcept {
    try {
        Publisher::PublishRecord record;
        record.line = place.line;
        record.file = place.file;
        record.function = place.function;
        record.signature = place.signature;
        record.action = "Operation";
        m_published.Begin(std::move(record), nullptr, {});
    } catch (...) {
        // An operation is worth more than its trace.
    }
}

TraceScope::~TraceScope() {
    if (IsTraceOn()) WriteTrace(TraceInfo, m_file, m_function, "<---------------------Exit");
}

}  // namespace Streams
