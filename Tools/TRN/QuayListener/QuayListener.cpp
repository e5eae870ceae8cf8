// The entries of the listener library. Each message is written before its entry returns, so that there is never
// anything to wait for.
#include <atomic>
#include <mutex>
#include <string>

#include "Publisher/ListenerConfiguration.h"
#include "TraceFile.h"

#if defined(_WIN32)
#define LISTENER_ENTRY extern "C" __declspec(dllexport)
#else
#define LISTENER_ENTRY extern "C" __attribute__((visibility("default")))
#endif

namespace {

/// Thread: safe from several threads.
class Listener {
public:
    Listener() = default;
    /// From here to the end of the program nobody listens.
    ~Listener() { m_isOpen = false; }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Empty closes. Null, or why not.
    const char* Open(const std::string& path) {
        const std::lock_guard guard(m_lock);
        m_isOpen = false;
        m_file.Close();
        if (path.empty()) return nullptr;
        const auto opened = m_file.Open(path);
        m_isOpen = m_file.IsOpen();
        if (!opened) m_reason = opened.Reason();
        return opened ? nullptr : m_reason.c_str();
    }

    /// A file that the configuration names is opened by the first who asks.
    bool IsListening() {
        std::call_once(m_configured, [this] { Configure(); });
        return m_isOpen && !m_isSuspended;
    }

    void Hear(const Publisher::PublishMessage& message) {
        thread_local int depth = 0;
        const std::uint32_t kind = message.record->kind;
        if (kind == Publisher::ScopeEnd && depth > 0) --depth;
        {
            const std::lock_guard guard(m_lock);
            ++m_messages;
            if (m_file.IsOpen()) m_file.Write({message, depth});
            m_isOpen = m_file.IsOpen();
        }
        if (kind == Publisher::ScopeStart) ++depth;
    }

    void Suspend(bool suspended) { m_isSuspended = suspended; }
    std::uint32_t Messages() const { return m_messages; }

private:
    void Configure() {
        auto& configuration = Publisher::ListenerConfiguration::OfThisProcess();
        configuration.RefreshOutputType();
        if (configuration.OutputType() != 0 && !m_isOpen) Open(configuration.Value("QuayListener", "FILE"));
    }

    std::mutex m_lock;
    std::once_flag m_configured;
    QuayListener::TraceFile m_file;
    std::string m_reason;
    std::atomic<bool> m_isOpen{false};
    std::atomic<bool> m_isSuspended{false};
    std::atomic<std::uint32_t> m_messages{0};
};

Listener& TheListener() {
    static Listener listener;
    return listener;
}

}  // namespace

/// Whether anyone listens.
LISTENER_ENTRY std::uint8_t DO_LOG() {
    return TheListener().IsListening() ? 1 : 0;
}

LISTENER_ENTRY void PUBLISH_MESSAGE(const Publisher::PublishMessage* message) {
    if (message && message->record) TheListener().Hear(*message);
}

LISTENER_ENTRY std::uint32_t WAIT_UNTILL_EMPTY() {
    return 0;
}

LISTENER_ENTRY std::uint32_t SUSPEND_FROM_ACTION(std::uint8_t suspended) {
    TheListener().Suspend(suspended != 0);
    return 0;
}

LISTENER_ENTRY std::uint32_t WAIT_UNTILL_SAVE_OPERATION_DONE() {
    return 0;
}

/// Number of messages so far.
LISTENER_ENTRY std::uint32_t GET_LATEST_MESSAGE_ID() {
    return TheListener().Messages();
}

/// Opens the file to write to; an empty path closes it. @return null, or why it can't be, until the next call
LISTENER_ENTRY const char* OPEN_OUTPUT(const char* path) {
    return TheListener().Open(path ? path : "");
}
