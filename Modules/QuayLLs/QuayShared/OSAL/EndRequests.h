// What asks this program to end: Ctrl-C, a request to terminate, a closed terminal.
#pragma once

#include "OSAL/Wakeup.h"

namespace OSAL {

enum class EndRequest { None, Interrupt, Terminate, HangUp };

/// Catches the requests for as long as it lives; one at a time in a process. Meanwhile a write to a closed pipe fails
/// instead of ending the program. A closed terminal counts only for who didn't start it to outlive that.
/// Thread: made and destroyed by the main thread; the rest from any.
class EndRequests {
public:
    EndRequests();
    ~EndRequests();
    EndRequests(const EndRequests&) = delete;
    EndRequests& operator=(const EndRequests&) = delete;

    /// Since the start, or since Forget().
    int Count() const;
    EndRequest First() const;
    /// Makes the requests so far undone.
    void Forget();
    /// Set by the first request until Forget().
    const Wakeup& AnyCame() const { return m_any; }
    /// Set by each request, for the one thread that clears it.
    const Wakeup& EachCame() const { return m_each; }

private:
    Wakeup m_any;
    Wakeup m_each;
};

}  // namespace OSAL
