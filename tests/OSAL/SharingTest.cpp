#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "Child.h"
#include "OSAL/OSAL.h"

using OSAL::SharedMemory;

namespace {

std::string NewName() {
    static int count = 0;
    return "osal-test-" + std::to_string(getpid()) + "-" + std::to_string(++count);
}

std::string TextOf(SharedMemory& memory) {
    std::string text;
    return memory.Read(text) == 0 ? text : "unreadable";
}

}  // namespace

TEST(SharedMemories, AreReadByAnotherProcessThatWaitsForThem) {
    const auto name = NewName();
    SharedMemory memory(name.c_str(), 100);
    EXPECT_EQ(TextOf(memory), "") << "cleared when made";
    Child reader([&] {
        SharedMemory same(std::filesystem::path(name).wstring().c_str(), 100);
        const bool came = same.WaitForData(5000) && TextOf(same) == "sent";
        return came && same.Write("back", 5) == 0 ? 0 : 1;
    });
    OSAL::SleepMs(20);
    EXPECT_EQ(memory.Write("sent", 5), 0);
    EXPECT_EQ(reader.Status(), 0);
    EXPECT_EQ(TextOf(memory), "back");
    memory.Close();
    EXPECT_FALSE(memory.IsOpen());
    EXPECT_EQ(memory.Write("x", 1), SharedMemory::NotOpen);
    SharedMemory next(name.c_str(), 100);
    EXPECT_EQ(TextOf(next), "") << "the last to leave takes it along";
}

TEST(SharedMemories, RefuseSizesThatDontFitAndChangeNothing) {
    const auto name = NewName();
    SharedMemory memory(name.c_str(), 8);
    EXPECT_EQ(memory.Write("12345678", 8), 0);
    EXPECT_EQ(memory.Write("123456789", 9), SharedMemory::TooLarge);
    EXPECT_EQ(TextOf(memory), "12345678") << "no zero byte at its end";
    std::vector<std::byte> bytes;
    std::uint64_t size = 9;
    EXPECT_EQ(memory.Read(bytes, size), SharedMemory::Refused);
    EXPECT_EQ(memory.Read(bytes, size = 0), 0);
    EXPECT_EQ(bytes.size(), 8u);
    EXPECT_EQ(memory.Write(nullptr, 4), 0);
    EXPECT_EQ(memory.Read(bytes, size = 5), 0);
    EXPECT_EQ(bytes[4], std::byte{'5'}) << "the rest stays";
    for (const std::uint64_t bad : {std::uint64_t{0}, std::uint64_t{1} << 40, ~std::uint64_t{0}}) {
        SharedMemory none(NewName().c_str(), bad);
        EXPECT_FALSE(none.IsOpen());
        EXPECT_EQ(none.Read(bytes, size), SharedMemory::NotOpen);
    }
    SharedMemory larger(name.c_str(), 9), unnamed(static_cast<const char*>(nullptr), 9);
    EXPECT_FALSE(larger.IsOpen() || unnamed.IsOpen());
}

TEST(SharedMemories, OutliveAWriterThatIsKilledWhileItHoldsTheLock) {
    const auto name = NewName();
    SharedMemory memory(name.c_str(), 100);
    Child holder([&] {
        OSAL::NamedLock lock((name + "Read").c_str());
        lock.Enter();
        return pause();
    });
    OSAL::NamedLock lock((name + "Read").c_str());
    EXPECT_TRUE(lock.Existed());
    while (lock.TryEnter()) {
        lock.Leave();
        OSAL::SleepMs(1);
    }
    holder.Kill();
    EXPECT_EQ(memory.Write("alive", 6), 0);
    EXPECT_EQ(TextOf(memory), "alive");
    Child leaves([&] {
        SharedMemory left((name + "2").c_str(), 10);
        left.Write("stale", 6);
        return raise(SIGKILL);
    });
    leaves.Status();
    SharedMemory fresh((name + "2").c_str(), 10);
    EXPECT_EQ(TextOf(fresh), "") << "what nobody has open is gone";
}

TEST(SharedMemories, AreNeverSeenHalfWritten) {
    const auto name = NewName();
    constexpr std::size_t size = 5000;
    SharedMemory memory(name.c_str(), size);
    const auto write = [&](char letter) {
        SharedMemory own(name.c_str(), size);
        const std::string text(size, letter);
        for (int k = 0; k < 40; ++k)
            if (own.Write(text.data(), size) != 0) return 1;
        return 0;
    };
    Child other([&] { return write('b'); });
    std::thread same([&] { write('a'); });
    std::string text;
    for (int k = 0; k < 400; ++k) {
        ASSERT_EQ(memory.Read(text), 0);
        ASSERT_TRUE(text.empty() || text == std::string(size, text[0])) << k;
        SharedMemory brief(name.c_str(), size);  // comes and goes while the others are at work
    }
    same.join();
    EXPECT_EQ(other.Status(), 0);
}

TEST(NamedEvents, WakeOneWaiterAndTimeOutForTheRest) {
    const auto name = NewName();
    OSAL::NamedEvent event(name), same(name);
    EXPECT_FALSE(event.Wait(5));
    same.Set();
    EXPECT_TRUE(event.Wait(0));
    EXPECT_FALSE(same.Wait(0));
    std::thread waiter([&] { EXPECT_TRUE(event.Wait(SyncObjectsOSAL::Infinite)); });
    same.Set();
    waiter.join();
}

TEST(Threads, StartWhenResumedAndSayWhenThereIsNothingToDo) {
    static int steps = 0;
    OSAL::ThreadRecord record{&steps, [](void* count) -> std::uint32_t { return ++*static_cast<int*>(count) + 40; },
                              [](void* count) { ++*static_cast<int*>(count); }};
    {
        OSAL::Thread thread(&record);
        EXPECT_FALSE(thread.Wait(5));
        EXPECT_EQ(thread.GetExitCode(), 259u);
        thread.Resume();
        EXPECT_TRUE(thread.Wait(SyncObjectsOSAL::Infinite));
        EXPECT_EQ(thread.GetExitCode(), 42u);
        EXPECT_EQ(record.result, 42u);
        const OSAL::Thread never(&record);
    }
    EXPECT_EQ(steps, 2);
    static std::string heard;
    OSAL::SetDebugOutputHook([](const char* text) { heard += std::string(text) + "\n"; });
    OSAL::ThreadRecord idle, failing{nullptr, [](void*) -> std::uint32_t { throw std::runtime_error("thrown"); }};
    for (OSAL::ThreadRecord* bad : {static_cast<OSAL::ThreadRecord*>(nullptr), &idle, &failing})
        EXPECT_EQ(OSAL::ThreadCallbackWrapper(bad), 1u);
    OSAL::SetDebugOutputHook(nullptr);
    EXPECT_EQ(heard,
              "ThreadCallbackWrapper - Invalid Argument!!! (thisObj == 0)\n"
              "ThreadCallbackWrapper - Invalid Argument!!! (threadCallback == 0)\nthrown\n");
}
