// Requests to end as signals.
#include "OSAL/EndRequests.h"

#include <signal.h>

#include <atomic>

namespace OSAL {

namespace {

// What the signal handler may touch.
std::atomic<int> signalCount{0};
std::atomic<int> firstSignal{0};
std::atomic<const Wakeup*> anyCame{nullptr};
std::atomic<const Wakeup*> eachCame{nullptr};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<const Wakeup*>::is_always_lock_free);

extern "C" void OsalOnEndRequest(int number) {
    int none = 0;
    firstSignal.compare_exchange_strong(none, number);
    ++signalCount;
    for (const Wakeup* wakeup : {anyCame.load(), eachCame.load()})
        if (wakeup) wakeup->Set();
}

extern "C" void OsalOnBrokenPipe(int) {}

void Install(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

bool IsIgnored(int number) {
    struct sigaction action {};
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

EndRequests::EndRequests() {
    signalCount = 0;
    firstSignal = 0;
    anyCame = &m_any;
    eachCame = &m_each;
    // An inherited "ignore" (a script's background job) is replaced: who sends the signal means this program.
    Install(SIGINT, OsalOnEndRequest);
    Install(SIGTERM, OsalOnEndRequest);
    if (!IsIgnored(SIGHUP)) Install(SIGHUP, OsalOnEndRequest);
    // A handler and not SIG_IGN, which programs started from here would inherit.
    Install(SIGPIPE, OsalOnBrokenPipe);
}

EndRequests::~EndRequests() {
    for (const int number : {SIGINT, SIGTERM, SIGPIPE})
        Install(number, SIG_DFL);
    if (!IsIgnored(SIGHUP)) Install(SIGHUP, SIG_DFL);
    anyCame = nullptr;
    eachCame = nullptr;
}

int EndRequests::Count() const {
    return signalCount;
}

EndRequest EndRequests::First() const {
    switch (firstSignal) {
        case 0:
            return EndRequest::None;
        case SIGTERM:
            return EndRequest::Terminate;
        case SIGHUP:
            return EndRequest::HangUp;
        default:
            return EndRequest::Interrupt;
    }
}

void EndRequests::Forget() {
    m_any.Clear();
    firstSignal = 0;
    signalCount = 0;
}

}  // namespace OSAL
