#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

#include "OSAL/Locks.h"

using namespace SyncObjectsOSAL;

namespace {

/// Result of `call` on another thread.
template <typename Call>
bool Elsewhere(Call call) {
    bool result = false;
    std::thread([&] { result = call(); }).join();
    return result;
}

std::string failures;

void Collect(unsigned level, const char* function, const char* message) {
    failures += std::to_string(level) + " " + function + ": " + message + "\n";
}

}  // namespace

TEST(Mutex, BelongsToOneThreadWhichMayLockItAgain) {
    MutexOSAL mutex;
    EXPECT_TRUE(mutex.IsValid());
    EXPECT_FALSE(mutex.Unlock()) << "nobody holds it";
    EXPECT_TRUE(mutex.Lock(0));
    EXPECT_TRUE(mutex.Lock(Infinite));
    EXPECT_FALSE(Elsewhere([&] { return mutex.Lock(5); }));
    EXPECT_FALSE(Elsewhere([&] { return mutex.Unlock(); })) << "not its owner";
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_FALSE(Elsewhere([&] { return mutex.Lock(0); })) << "locked twice, given back once";
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_TRUE(Elsewhere([&] { return mutex.Lock(0) && mutex.Unlock(); }));
}

TEST(Mutex, WakesAWaitingThread) {
    MutexOSAL mutex;
    mutex.Lock(Infinite);
    int shared = 0;
    std::thread waiting([&] {
        const Locked guard(mutex);
        ++shared;
    });
    shared = 41;
    mutex.Unlock();
    waiting.join();
    EXPECT_EQ(shared, 42);
}

TEST(Semaphore, CountsFromItsInitialValueUpToItsMaximum) {
    SemaphoreOSAL semaphore(0, 2);
    EXPECT_FALSE(semaphore.Lock(1)) << "starts unavailable";
    EXPECT_FALSE(semaphore.Release(3));
    EXPECT_FALSE(semaphore.Lock(0)) << "a refused release changes nothing";
    EXPECT_FALSE(semaphore.Release(0));
    EXPECT_TRUE(semaphore.Release(2));
    EXPECT_FALSE(semaphore.Unlock()) << "full";
    EXPECT_TRUE(Elsewhere([&] { return semaphore.Lock(0); })) << "it has no owner";
    EXPECT_TRUE(semaphore.Lock(0));
    EXPECT_FALSE(semaphore.Lock(0));
}

TEST(Semaphore, ReportsCountsThatMakeNoSemaphoreAndStaysInvalid) {
    EXPECT_THROW(SemaphoreOSAL(0, 0), std::runtime_error);
    failures.clear();
    SetFailureHook(&Collect);
    {
        SemaphoreOSAL full(2, 1), negative(-1);
        EXPECT_FALSE(full.IsValid() || negative.IsValid());
        EXPECT_FALSE(full.Lock(0) || full.Unlock());
    }
    SetFailureHook(nullptr);
    EXPECT_EQ(failures,
              "5 SyncObjectsOSAL::SemaphoreOSAL::SemaphoreOSAL: Failed to create semaphore with maximum count!\n"
              "5 SyncObjectsOSAL::SemaphoreOSAL::SemaphoreOSAL: Failed to create semaphore!\n"
              "5 SyncObjectsOSAL::SemaphoreOSAL::~SemaphoreOSAL: Failed releasing Semaphore\n"
              "5 SyncObjectsOSAL::SemaphoreOSAL::~SemaphoreOSAL: Failed releasing Semaphore\n");
}

TEST(CriticalSection, IsRecursiveWithAndWithoutSpinning) {
    CriticalSectionOSAL spinning(50);
    Synchronization::CriticalSection plain;
    int sum = 0;
    const auto add = [&] {
        for (int i = 0; i < 2000; ++i) {
            const Entered outer(spinning);
            const Entered inner(spinning);
            const Entered other(plain);
            ++sum;
        }
    };
    std::thread second(add);
    add();
    second.join();
    EXPECT_EQ(sum, 4000);
}

namespace {

struct Journal : ILock, IScopeCompanion {
    explicit Journal(const std::string& failing) : failAt(failing) {}
    bool Note(const std::string& what) {
        calls += what + " ";
        return what != failAt;
    }
    bool Lock(std::uint32_t timeoutMs) override { return Note("lock" + std::to_string(timeoutMs)); }
    bool Unlock() override { return Note("unlock"); }
    void OnLocked() override {
        if (!Note("locked")) throw std::logic_error("companion");
    }
    void OnUnlocked() override { Note("unlocked"); }

    std::string failAt;
    std::string calls;
};

std::string Scoped(Journal& journal) {
    try {
        const ScopedLock scope(&journal, &journal);
        journal.Note("body");
    } catch (const std::exception& e) {
        return e.what();
    }
    return "";
}

}  // namespace

TEST(ScopedLock, NeverLeavesItsLockHeldWhateverFails) {
    struct Case {
        std::string failAt, error, calls;
    };
    for (const auto& c :
         {Case{"", "", "lock10000 locked body unlock unlocked "}, Case{"lock10000", "Failed to lock", "lock10000 "},
          Case{"locked", "companion", "lock10000 locked unlock "},
          Case{"unlock", "Failed to unlock", "lock10000 locked body unlock "}}) {
        Journal journal(c.failAt);
        EXPECT_EQ(Scoped(journal), c.error);
        EXPECT_EQ(journal.calls, c.calls);
    }
    EXPECT_NO_THROW(ScopedLock(nullptr, nullptr));
}

TEST(ScopedLock, LeavesAnExceptionInFlightAlone) {
    Journal journal("unlock");
    try {
        const ScopedLock scope(&journal);
        throw std::runtime_error("first");
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "first");
    }
}
