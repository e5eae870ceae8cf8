#include "Console/Supervisor.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace TarnHost {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto grace = std::chrono::milliseconds(800);
constexpr int lookAgain_ms = 20;  // while a signal waits for the command to take notice

/// What the command's thread leaves behind; shared, for the thread may outlive the wait.
struct Ending {
    OSAL::Wakeup came;
    std::atomic<ExitStatus> status{Failed};
};

/// True when the command ended, false when it is to be given up.
bool AwaitEnd(InterruptWatch& watch, const OSAL::Wakeup& ended) {
    constexpr auto none = Clock::time_point::max();
    auto deadline = none;
    while (true) {
        if (ended.WaitBeside(watch.EachCame(), watch.IsRequested() ? lookAgain_ms : -1)) return true;
        watch.EachCame().Clear();
        const int count = watch.Count();
        if (count >= 2) return false;
        if (count == 0 || watch.IsFinishing())
            deadline = none;
        else if (deadline == none)
            deadline = Clock::now() + grace;
        else if (Clock::now() >= deadline)
            return false;
    }
}

}  // namespace

std::optional<ExitStatus> RunWatched(InterruptWatch& watch, std::function<ExitStatus()> command) {
    const auto ending = std::make_shared<Ending>();
    std::thread thread([ending, command = std::move(command)] {
        ending->status = command();
        ending->came.Set();
    });
    if (AwaitEnd(watch, ending->came)) {
        thread.join();
        return ending->status;
    }
    thread.detach();
    return std::nullopt;
}

}  // namespace TarnHost
