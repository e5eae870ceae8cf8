// Ctrl-C, a request to terminate and a closed terminal, turned into a flag that commands look at between two steps.
#pragma once

#include <atomic>

#include "ExitStatus.h"
#include "OSAL/EndRequests.h"

namespace TarnHost {

/// Catches the requests for as long as it lives; one at a time in a process.
/// Thread: made and destroyed by the main thread; questions from any.
class InterruptWatch {
public:
    bool IsRequested() const { return Count() > 0; }
    /// Requests since the start, or since Forget().
    int Count() const { return m_requests.Count(); }
    /// `Interrupted`, `Terminated` or `HungUp`, by the first request.
    ExitStatus Status() const;
    /// Makes the requests so far undone, for a program that answers Ctrl-C and goes on.
    void Forget() { m_requests.Forget(); }
    /// Ends a wait for something else: set by the first request until Forget().
    const OSAL::Wakeup& AnyCame() const { return m_requests.AnyCame(); }
    /// Set by each request, for the one thread that clears it.
    const OSAL::Wakeup& EachCame() const { return m_requests.EachCame(); }

    /// Stands around the writing of files that keep what was measured: an end by force waits for it.
    class Finishing {
    public:
        explicit Finishing(InterruptWatch& watch) : m_watch(watch) { ++m_watch.m_finishing; }
        ~Finishing() { --m_watch.m_finishing; }
        Finishing(const Finishing&) = delete;
        Finishing& operator=(const Finishing&) = delete;

    private:
        InterruptWatch& m_watch;
    };
    bool IsFinishing() const { return m_finishing > 0; }

private:
    OSAL::EndRequests m_requests;
    std::atomic<int> m_finishing{0};
};

}  // namespace TarnHost
