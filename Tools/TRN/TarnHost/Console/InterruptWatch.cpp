#include "Console/InterruptWatch.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace TarnHost {
namespace {

// What the signal handler may touch.
std::atomic<int> signalCount{0};
std::atomic<int> firstSignal{0};
std::atomic<int> latchedDescriptor{-1};
std::atomic<int> eachDescriptor{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void TarnHostOnSignal(int number) {
    const int savedErrno = errno;
    int none = 0;
    firstSignal.compare_exchange_strong(none, number);
    ++signalCount;
    for (const int descriptor : {latchedDescriptor.load(), eachDescriptor.load()})
        [[maybe_unused]] const auto written = ::write(descriptor, "!", 1);
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

bool IsIgnored(int number) {
    struct sigaction action {};
    return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void Drain(int descriptor) {
    char drained[16];
    while (::read(descriptor, drained, sizeof drained) > 0) {
    }
}

}  // namespace

InterruptWatch::InterruptWatch() {
    if (::pipe2(m_latched, O_CLOEXEC | O_NONBLOCK) != 0 || ::pipe2(m_each, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    signalCount = 0;
    firstSignal = 0;
    latchedDescriptor = m_latched[1];
    eachDescriptor = m_each[1];
    // An inherited "ignore" (a script's background job) is replaced: who sends the signal means this program. But who
    // starts it to outlive the terminal means that.
    Install(SIGINT, TarnHostOnSignal);
    Install(SIGTERM, TarnHostOnSignal);
    if (!IsIgnored(SIGHUP)) Install(SIGHUP, TarnHostOnSignal);
    // A handler and not SIG_IGN, which programs started from here would inherit.
    Install(SIGPIPE, TarnHostOnBrokenPipe);
}

InterruptWatch::~InterruptWatch() {
    for (const int number : {SIGINT, SIGTERM, SIGPIPE})
        Install(number, SIG_DFL);
    if (!IsIgnored(SIGHUP)) Install(SIGHUP, SIG_DFL);
    for (const int descriptor : {m_latched[0], m_latched[1], m_each[0], m_each[1]})
        ::close(descriptor);
}

int InterruptWatch::Count() const {
    return signalCount;
}

ExitStatus InterruptWatch::Status() const {
    return firstSignal == SIGTERM ? Terminated : firstSignal == SIGHUP ? HungUp : Interrupted;
}

void InterruptWatch::Forget() {
    Drain(m_latched[0]);
    firstSignal = 0;
    signalCount = 0;
}

void InterruptWatch::DrainEach() {
    Drain(m_each[0]);
}

}  // namespace TarnHost
