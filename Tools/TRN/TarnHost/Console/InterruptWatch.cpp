#include "Console/InterruptWatch.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace TarnHost {
namespace {

// What the signal handler may touch.
std::atomic<int> signalCount{0};
std::atomic<int> firstSignal{0};
std::atomic<int> signalDescriptor{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void TarnHostOnSignal(int number) {
    const int savedErrno = errno;
    int none = 0;
    firstSignal.compare_exchange_strong(none, number);
    ++signalCount;
    [[maybe_unused]] const auto written = ::write(signalDescriptor, "!", 1);
    errno = savedErrno;
}

extern "C" void TarnHostOnBrokenPipe(int) {}

void Install(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    ::sigaction(number, &action, nullptr);
}

}  // namespace

InterruptWatch::InterruptWatch() {
    if (::pipe2(m_signalPipe, O_CLOEXEC | O_NONBLOCK) != 0 || ::pipe2(m_stopPipe, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    signalCount = 0;
    firstSignal = 0;
    signalDescriptor = m_signalPipe[1];
    m_thread = std::thread([this] { Watch(); });
    // An inherited "ignore" (a script's background job) is replaced: who sends the signal means this program.
    Install(SIGINT, TarnHostOnSignal);
    Install(SIGTERM, TarnHostOnSignal);
    // A handler and not SIG_IGN, which programs started from here would inherit.
    Install(SIGPIPE, TarnHostOnBrokenPipe);
}

InterruptWatch::~InterruptWatch() {
    for (const int number : {SIGINT, SIGTERM, SIGPIPE})
        Install(number, SIG_DFL);
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    [[maybe_unused]] const auto written = ::write(m_stopPipe[1], "!", 1);
    m_thread.join();
    for (const int descriptor : {m_signalPipe[0], m_signalPipe[1], m_stopPipe[0], m_stopPipe[1]})
        ::close(descriptor);
}

bool InterruptWatch::IsRequested() const {
    return signalCount > 0;
}

ExitStatus InterruptWatch::Status() const {
    return firstSignal == SIGTERM ? Terminated : Interrupted;
}

void InterruptWatch::Forget() {
    char drained[16];
    while (::read(m_signalPipe[0], drained, sizeof drained) > 0) {
    }
    firstSignal = 0;
    signalCount = 0;
}

bool InterruptWatch::WaitForSignal() {
    pollfd watched[] = {{m_signalPipe[0], POLLIN, 0}, {m_stopPipe[0], POLLIN, 0}};
    while (::poll(watched, 2, -1) < 0 && errno == EINTR) {
    }
    return (watched[1].revents & POLLIN) == 0;
}

/// True when the running call ended within its grace.
bool InterruptWatch::IsCallOver(std::unique_lock<std::mutex>& lock) {
    const auto deadline = std::chrono::steady_clock::now() + m_grace;
    const auto isOver = [this] { return !m_isBlocking || m_isStopping; };
    while (std::chrono::steady_clock::now() < deadline && signalCount < 2) {
        if (m_changed.wait_for(lock, std::chrono::milliseconds(20), isOver)) return true;
    }
    return isOver();
}

void InterruptWatch::Watch() {
    if (!WaitForSignal()) return;
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isBlocking || m_isStopping; });
        if (m_isStopping) return;
        if (IsCallOver(lock)) continue;
        // The lock stays held: the main thread can't leave its block any more.
        if (m_lastRites) m_lastRites();
        ::_exit(Status());
    }
}

InterruptWatch::Blocking::Blocking(InterruptWatch& watch, std::chrono::milliseconds grace,
                                   std::function<void()> lastRites)
    : m_watch(watch) {
    {
        const std::lock_guard lock(m_watch.m_mutex);
        m_watch.m_grace = grace;
        m_watch.m_lastRites = std::move(lastRites);
        m_watch.m_isBlocking = true;
    }
    m_watch.m_changed.notify_all();
}

InterruptWatch::Blocking::~Blocking() {
    {
        const std::lock_guard lock(m_watch.m_mutex);
        m_watch.m_isBlocking = false;
        m_watch.m_lastRites = nullptr;
    }
    m_watch.m_changed.notify_all();
}

}  // namespace TarnHost
