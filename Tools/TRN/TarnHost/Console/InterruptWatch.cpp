#include "Console/InterruptWatch.h"

namespace TarnHost {

ExitStatus InterruptWatch::Status() const {
    switch (m_requests.First()) {
        case OSAL::EndRequest::Terminate:
            return Terminated;
        case OSAL::EndRequest::HangUp:
            return HungUp;
        default:
            return Interrupted;
    }
}

}  // namespace TarnHost
