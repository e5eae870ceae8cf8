// Lock objects. They log a failure and stay in place; `IsValid` tells whether one can be used.
#pragma once

#include <climits>
#include <cstdint>
#include <memory>
#include <mutex>

namespace SyncObjectsOSAL {

constexpr std::uint32_t Infinite = 0xFFFFFFFF;

class ISyncInterface {
public:
    virtual ~ISyncInterface() = default;
};

class ILock : public virtual ISyncInterface {
public:
    virtual bool Unlock() = 0;
    /// Waits `timeoutMs` milliseconds at most, `Infinite` for as long as it takes; false when the time ran out.
    virtual bool Lock(std::uint32_t timeoutMs) = 0;
};

class IMutex : public ILock {};

class ISemaphore : public ILock {
public:
    /// False, and nothing changed, when the count would pass the maximum.
    virtual bool Release(std::int32_t count) = 0;
};

class ICriticalSection : public virtual ISyncInterface {
public:
    virtual void Enter() = 0;
    virtual void Leave() = 0;
};

/// A recursive mutex.
class MutexOSAL : public IMutex {
public:
    MutexOSAL();
    ~MutexOSAL() override;
    bool Unlock() override;
    bool Lock(std::uint32_t timeoutMs) override;
    bool IsValid() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

class SemaphoreOSAL : public ISemaphore {
public:
    explicit SemaphoreOSAL(std::int32_t initial);
    /// @throws std::runtime_error when `maximum` is below 1
    SemaphoreOSAL(std::int32_t initial, std::int32_t maximum);
    ~SemaphoreOSAL() override;
    /// Release(1).
    bool Unlock() override;
    bool Lock(std::uint32_t timeoutMs) override;
    bool Release(std::int32_t count) override;
    bool IsValid() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

/// A recursive lock without time-out. Making one can't fail here: it owns no handle.
class CriticalSectionOSAL : public ICriticalSection {
public:
    CriticalSectionOSAL() = default;
    /// @param spinCount tries before the thread goes to sleep
    explicit CriticalSectionOSAL(std::uint32_t spinCount) : m_spinCount(spinCount) {}
    void Enter() override;
    void Leave() override;
    /// False at once when another thread has it.
    bool TryEnter() { return m_mutex.try_lock(); }

private:
    std::recursive_mutex m_mutex;
    std::uint32_t m_spinCount = 0;
};

/// Enters for a block. Works for `SyncObjectsOSAL` and `Synchronization` critical sections.
template <typename Section>
class Entered {
public:
    explicit Entered(Section& section) : m_section(section) { m_section.Enter(); }
    ~Entered() { m_section.Leave(); }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;

private:
    Section& m_section;
};

/// Locks for a block, waiting without limit.
template <typename LockType>
class Locked {
public:
    explicit Locked(LockType& lock) : m_lock(lock) { m_lock.Lock(Infinite); }
    ~Locked() { m_lock.Unlock(); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    LockType& m_lock;
};

/// Told when a `ScopedLock` was taken and given back.
class IScopeCompanion {
public:
    virtual void OnLocked() = 0;
    virtual void OnUnlocked() = 0;

protected:
    ~IScopeCompanion() = default;
};

/// Locks for a block, waiting 10 seconds at most; lock and companion may each be null.
/// @throws std::runtime_error "Failed to lock", and "Failed to unlock" at its end unless an exception is in flight
class ScopedLock {
public:
    explicit ScopedLock(ILock* lock, IScopeCompanion* companion = nullptr);
    ~ScopedLock() noexcept(false);
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    ILock* m_lock;
    IScopeCompanion* m_companion;
    int m_exceptionsAtStart;
};

/// The function that gets the lock objects' failures: level, function name and message. Installed by the layer that
/// owns the log; null drops them.
using FailureHook = void (*)(unsigned level, const char* function, const char* message);
void SetFailureHook(FailureHook hook);

}  // namespace SyncObjectsOSAL

namespace Utilities {
class IObject {
public:
    virtual ~IObject() = default;
};
}  // namespace Utilities

namespace Synchronization {

class ILock : public Utilities::IObject {
public:
    virtual bool Unlock() = 0;
    virtual bool Lock(std::uint32_t timeoutMs) = 0;
};
class IMutex : public ILock {};
class ICriticalSection : public Utilities::IObject {
public:
    virtual void Enter() = 0;
    virtual void Leave() = 0;
};

class CriticalSection : public ICriticalSection {
public:
    void Enter() override { m_section.Enter(); }
    void Leave() override { m_section.Leave(); }

private:
    SyncObjectsOSAL::CriticalSectionOSAL m_section;
};

class MutexSync : public IMutex {
public:
    bool Unlock() override { return m_mutex.Unlock(); }
    bool Lock(std::uint32_t timeoutMs) override { return m_mutex.Lock(timeoutMs); }

private:
    SyncObjectsOSAL::MutexOSAL m_mutex;
};

}  // namespace Synchronization
