// What ends a thread's wait.
#pragma once

#include <cstdint>

namespace OSAL {

/// Set by one thread or a signal handler, waited for by another; stays set until it is cleared.
/// Thread: any, all at once.
class Wakeup {
public:
    /// @throws std::system_error when the system has no more of them
    Wakeup();
    ~Wakeup();
    Wakeup(const Wakeup&) = delete;
    Wakeup& operator=(const Wakeup&) = delete;

    void Set() const noexcept;
    void Clear() const noexcept;
    /// Waits until this or `other` is set, or for that time; below 0: for ever. May return early.
    /// @return whether this one is set
    bool WaitBeside(const Wakeup& other, int timeoutMs) const;

private:
    friend class InputStream;
    std::intptr_t m_waiting = -1;
    std::intptr_t m_setting = -1;
};

}  // namespace OSAL
