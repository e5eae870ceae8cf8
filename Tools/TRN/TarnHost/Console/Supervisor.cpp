#include "Console/Supervisor.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <system_error>
#include <thread>

namespace TarnHost {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto grace = std::chrono::milliseconds(800);
constexpr int lookAgain_ms = 20;  // while a signal waits for the command to take notice

/// What the command's thread leaves behind; shared, for the thread may outlive the wait.
struct Ending {
    Ending() {
        if (::pipe2(pipe, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    }
    ~Ending() {
        ::close(pipe[0]);
        ::close(pipe[1]);
    }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

    int pipe[2] = {-1, -1};
    std::atomic<ExitStatus> status{Failed};
};

/// True when the command ended, false when it is to be given up.
bool AwaitEnd(InterruptWatch& watch, int ended) {
    constexpr auto none = Clock::time_point::max();
    auto deadline = none;
    while (true) {
        pollfd watched[] = {{ended, POLLIN, 0}, {watch.EachDescriptor(), POLLIN, 0}};
        ::poll(watched, 2, watch.IsRequested() ? lookAgain_ms : -1);
        if (watched[0].revents != 0) return true;
        watch.DrainEach();
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
        [[maybe_unused]] const auto written = ::write(ending->pipe[1], "!", 1);
    });
    if (AwaitEnd(watch, ending->pipe[0])) {
        thread.join();
        return ending->status;
    }
    thread.detach();
    return std::nullopt;
}

}  // namespace TarnHost
