// The lock objects, over the language's own primitives: the same on every system.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <stdexcept>
#include <thread>

#include "OSAL/Locks.h"

namespace SyncObjectsOSAL {

namespace {

constexpr unsigned failureLevel = 5;

std::atomic<FailureHook> failureHook{nullptr};

void ReportFailure(const char* function, const char* message) {
    if (const auto hook = failureHook.load()) hook(failureLevel, function, message);
}

/// Waits until `ready`, `timeoutMs` milliseconds at most.
template <typename Ready>
bool WaitFor(std::condition_variable& changed, std::unique_lock<std::mutex>& guard, std::uint32_t timeoutMs,
             Ready ready) {
    if (timeoutMs != Infinite) return changed.wait_for(guard, std::chrono::milliseconds(timeoutMs), ready);
    changed.wait(guard, ready);
    return true;
}

}  // namespace

void SetFailureHook(FailureHook hook) {
    failureHook = hook;
}

// Owner and depth are ours, so that a thread that doesn't hold the mutex gets an answer, not undefined behaviour.
struct MutexOSAL::Impl {
    std::mutex guard;
    std::condition_variable released;
    std::thread::id owner;
    unsigned depth = 0;
};

MutexOSAL::MutexOSAL() : m_impl(new (std::nothrow) Impl) {
    if (!m_impl) ReportFailure("SyncObjectsOSAL::MutexOSAL::MutexOSAL", "Failed to create mutex!");
}

MutexOSAL::~MutexOSAL() {
    if (!m_impl) ReportFailure("SyncObjectsOSAL::MutexOSAL::~MutexOSAL", "Failed releasing mutex!");
}

bool MutexOSAL::Lock(std::uint32_t timeoutMs) {
    if (!m_impl) return false;
    const auto self = std::this_thread::get_id();
    std::unique_lock guard(m_impl->guard);
    const auto ready = [&] { return m_impl->depth == 0 || m_impl->owner == self; };
    if (!WaitFor(m_impl->released, guard, timeoutMs, ready)) return false;
    m_impl->owner = self;
    ++m_impl->depth;
    return true;
}

bool MutexOSAL::Unlock() {
    if (!m_impl) return false;
    const std::lock_guard guard(m_impl->guard);
    if (m_impl->depth == 0 || m_impl->owner != std::this_thread::get_id()) return false;
    if (--m_impl->depth == 0) m_impl->released.notify_one();
    return true;
}

bool MutexOSAL::IsValid() const {
    return m_impl != nullptr;
}

struct SemaphoreOSAL::Impl {
    std::mutex guard;
    std::condition_variable released;
    std::int32_t count;
    std::int32_t maximum;

    /// Null when the counts make no semaphore, or memory ran out.
    static Impl* Make(std::int32_t initial, std::int32_t maximum) {
        return initial < 0 || initial > maximum ? nullptr : new (std::nothrow) Impl(initial, maximum);
    }

private:
    Impl(std::int32_t initial, std::int32_t most) : count(initial), maximum(most) {}
};

SemaphoreOSAL::SemaphoreOSAL(std::int32_t initial) : m_impl(Impl::Make(initial, 0x7FFFFFFF)) {
    if (!m_impl) ReportFailure("SyncObjectsOSAL::SemaphoreOSAL::SemaphoreOSAL", "Failed to create semaphore!");
}

SemaphoreOSAL::SemaphoreOSAL(std::int32_t initial, std::int32_t maximum) {
    if (maximum < 1) throw std::runtime_error("Max count value is invalid. It must be positive");
    m_impl.reset(Impl::Make(initial, maximum));
    if (!m_impl)
        ReportFailure("SyncObjectsOSAL::SemaphoreOSAL::SemaphoreOSAL",
                      "Failed to create semaphore with maximum count!");
}

SemaphoreOSAL::~SemaphoreOSAL() {
    if (!m_impl) ReportFailure("SyncObjectsOSAL::SemaphoreOSAL::~SemaphoreOSAL", "Failed releasing Semaphore");
}

bool SemaphoreOSAL::Lock(std::uint32_t timeoutMs) {
    if (!m_impl) return false;
    std::unique_lock guard(m_impl->guard);
    if (!WaitFor(m_impl->released, guard, timeoutMs, [this] { return m_impl->count > 0; })) return false;
    --m_impl->count;
    return true;
}

bool SemaphoreOSAL::Unlock() {
    return Release(1);
}

bool SemaphoreOSAL::Release(std::int32_t count) {
    if (!m_impl || count < 1) return false;
    const std::lock_guard guard(m_impl->guard);
    if (count > m_impl->maximum - m_impl->count) return false;
    m_impl->count += count;
    m_impl->released.notify_all();
    return true;
}

bool SemaphoreOSAL::IsValid() const {
    return m_impl != nullptr;
}

void CriticalSectionOSAL::Enter() {
    for (std::uint32_t i = 0; i < m_spinCount; ++i)
        if (m_mutex.try_lock()) return;
    m_mutex.lock();
}

void CriticalSectionOSAL::Leave() {
    m_mutex.unlock();
}

ScopedLock::ScopedLock(ILock* lock, IScopeCompanion* companion)
    : m_lock(lock), m_companion(companion), m_exceptionsAtStart(std::uncaught_exceptions()) {
    constexpr std::uint32_t timeoutMs = 10000;
    if (m_lock && !m_lock->Lock(timeoutMs)) throw std::runtime_error("Failed to lock");
    if (!m_companion) return;
    try {
        m_companion->OnLocked();
    } catch (...) {
        if (m_lock) m_lock->Unlock();
        throw;
    }
}

ScopedLock::~ScopedLock() noexcept(false) {
    const bool unlocked = !m_lock || m_lock->Unlock();
    if (!unlocked) {
        if (std::uncaught_exceptions() > m_exceptionsAtStart) return;
        throw std::runtime_error("Failed to unlock");
    }
    if (m_companion) m_companion->OnUnlocked();
}

}  // namespace SyncObjectsOSAL
