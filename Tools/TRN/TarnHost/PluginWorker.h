// The thread that owns the plug-in, so that the one who waits for an answer can stop waiting.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "Console/InterruptWatch.h"
#include "Session.h"

namespace TarnHost {

/// Opens the session, runs its lines and closes it, all on one thread of its own.
/// Thread: used by one thread; that one and the worker's are the only two.
class PluginWorker {
public:
    static Result<std::unique_ptr<PluginWorker>> Open(const HostOptions& options, PluginVariant variant,
                                                      Receiver& receiver);
    /// Waits for the running line.
    ~PluginWorker();
    PluginWorker(const PluginWorker&) = delete;
    PluginWorker& operator=(const PluginWorker&) = delete;

    /// True while a line runs or its answer wasn't taken.
    bool IsBusy() const;
    /// Hands a line over. Only when it isn't busy.
    void Start(const std::string& line);
    /// Waits for the answer. Nothing when `watch` saw a signal first: the line goes on, and a later Wait gets its
    /// answer.
    std::optional<Exchange> Wait(const InterruptWatch& watch);

private:
    PluginWorker() = default;
    void Work(const HostOptions& options, PluginVariant variant, Receiver& receiver);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOpen = false;              ///< opening ended, well or not
    std::optional<Failure> m_failure;   ///< why it couldn't be opened
    std::optional<std::string> m_line;  ///< waits to be run
    std::optional<Exchange> m_answer;   ///< waits to be taken
    bool m_isBusy = false;
    bool m_isStopping = false;
    std::thread m_thread;
};

}  // namespace TarnHost
