// Ctrl-C and a request to terminate, turned into a flag that commands look at between two steps.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "Outcome.h"

namespace TarnHost {

/// Catches the signals for as long as it lives; one at a time in a process.
/// Thread: made and destroyed by the main thread; it runs a thread of its own.
class InterruptWatch {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    bool IsRequested() const;
    /// `Interrupted` or `Terminated`.
    ExitStatus Status() const;
    /// Makes the signals so far undone, for a program that answers Ctrl-C and goes on. Not with Blocking.
    void Forget();
    /// Becomes readable with the first signal and stays so, for a poll beside another descriptor.
    int Descriptor() const { return m_signalPipe[0]; }

    /// Stands around a call that can't be stopped from outside. When a signal comes, the call has `grace` to end (a
    /// second signal cuts it short); then `lastRites` runs on the watch's thread and the process ends with Status().
    /// From the end of the block on, the main thread has the word again.
    class Blocking {
    public:
        Blocking(InterruptWatch& watch, std::chrono::milliseconds grace, std::function<void()> lastRites);
        ~Blocking();
        Blocking(const Blocking&) = delete;
        Blocking& operator=(const Blocking&) = delete;

    private:
        InterruptWatch& m_watch;
    };

private:
    void Watch();
    bool WaitForSignal();
    bool IsCallOver(std::unique_lock<std::mutex>& lock);

    int m_signalPipe[2] = {-1, -1};
    int m_stopPipe[2] = {-1, -1};
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isBlocking = false;
    bool m_isStopping = false;
    std::chrono::milliseconds m_grace{0};
    std::function<void()> m_lastRites;
    std::thread m_thread;
};

}  // namespace TarnHost
