// Ctrl-C, a request to terminate and a closed terminal, turned into a flag that commands look at between two steps.
#pragma once

#include <atomic>

#include "ExitStatus.h"

namespace TarnHost {

/// Catches the signals for as long as it lives; one at a time in a process.
/// Thread: made and destroyed by the main thread; questions from any.
class InterruptWatch {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    bool IsRequested() const { return Count() > 0; }
    /// Signals since the start, or since Forget().
    int Count() const;
    /// `Interrupted`, `Terminated` or `HungUp`, by the first signal.
    ExitStatus Status() const;
    /// Makes the signals so far undone, for a program that answers Ctrl-C and goes on.
    void Forget();
    /// Becomes readable with the first signal and stays so until Forget(), for a poll beside another descriptor.
    int Descriptor() const { return m_latched[0]; }
    /// Becomes readable with each signal, for the one thread that calls DrainEach().
    int EachDescriptor() const { return m_each[0]; }
    void DrainEach();

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
    int m_latched[2] = {-1, -1};
    int m_each[2] = {-1, -1};
    std::atomic<int> m_finishing{0};
};

}  // namespace TarnHost
