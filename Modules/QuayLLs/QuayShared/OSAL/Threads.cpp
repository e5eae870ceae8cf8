#include "OSAL/Threads.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "OSAL/Crash.h"
#include "OSAL/Errors.h"
#include "OSAL/Locks.h"

namespace OSAL {

namespace {
constexpr std::uint32_t stillActive = 259;
}  // namespace

std::uint32_t ThreadCallbackWrapper(ThreadRecord* record) {
    if (!record || !record->callback) {
        OutputDebugString(record ? "ThreadCallbackWrapper - Invalid Argument!!! (threadCallback == 0)"
                                 : "ThreadCallbackWrapper - Invalid Argument!!! (thisObj == 0)");
        return 1;
    }
    record->result = 1;
    try {
        if (record->startHook) record->startHook(record->object);
        record->result = record->callback(record->object);
    } catch (const std::exception& e) {
        OutputDebugString(e.what());
    }
    return record->result;
}

struct Thread::State {
    std::mutex guard;
    std::condition_variable changed;
    bool resumed = false, dropped = false;
    std::uint32_t exitCode = stillActive;
    bool ended = false;
    std::thread thread;

    void Run(ThreadRecord* record) {
        PrepareCrashStack();
        std::unique_lock lock(guard);
        changed.wait(lock, [this] { return resumed || dropped; });
        const bool wanted = resumed;
        lock.unlock();
        const std::uint32_t code = wanted ? ThreadCallbackWrapper(record) : 0;
        lock.lock();
        exitCode = code;
        ended = true;
        changed.notify_all();
    }
};

Thread::Thread(ThreadRecord* record) : m_state(std::make_unique<State>()) {
    try {
        m_state->thread = std::thread([state = m_state.get(), record] { state->Run(record); });
    } catch (const std::system_error& e) {
        throw exception(e.what());
    }
}

Thread::~Thread() {
    {
        const std::lock_guard lock(m_state->guard);
        m_state->dropped = true;
        m_state->changed.notify_all();
    }
    m_state->thread.join();
}

void Thread::Resume() {
    const std::lock_guard lock(m_state->guard);
    m_state->resumed = true;
    m_state->changed.notify_all();
}

bool Thread::Wait(std::uint32_t timeoutMs) {
    std::unique_lock lock(m_state->guard);
    const auto ended = [this] { return m_state->ended; };
    if (timeoutMs != SyncObjectsOSAL::Infinite)
        return m_state->changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), ended);
    m_state->changed.wait(lock, ended);
    return true;
}

std::uint32_t Thread::GetExitCode() const {
    const std::lock_guard lock(m_state->guard);
    return m_state->exitCode;
}

}  // namespace OSAL
