// Threads that are made asleep, started by hand, and give a result.
#pragma once

#include <cstdint>
#include <memory>

namespace OSAL {

using ThreadCallback = std::uint32_t (*)(void* object);
using ThreadStartHook = void (*)(void* object);

/// What a thread is to do, and what came of it.
struct ThreadRecord {
    void* object = nullptr;
    ThreadCallback callback = nullptr;
    ThreadStartHook startHook = nullptr;  // called first, may be null
    std::uint32_t result = 0;
};

/// The body of every thread: the hook, then the callback, whose result goes into the record.
/// @return the result; 1, with a line to the debug output, when there is no record or no callback. Text of an exception
///         that leaves the callback goes to the debug output too, and the result is 1.
std::uint32_t ThreadCallbackWrapper(ThreadRecord* record);

/// One thread. Joins at its end; a thread that was never resumed ends without having run.
class Thread {
public:
    /// @param record  must live until the thread ended. @throws OSAL::exception when the system has no thread left
    explicit Thread(ThreadRecord* record);
    ~Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Lets it run; again has no effect.
    void Resume();
    /// @return true when it ended within that time, `Infinite` waiting for as long as it takes
    bool Wait(std::uint32_t timeoutMs);
    /// What its body gave; 259 while it runs.
    std::uint32_t GetExitCode() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The system's number of the calling thread.
std::uint32_t GetCurrentThreadId();

}  // namespace OSAL
