// The border to code that throws in two forms, by value and as a pointer.
#pragma once

#include <new>
#include <string>

#include "Caught.h"
#include "OSAL/Outcome.h"

namespace TarnSession {

/// Runs `step`; an exception becomes a refusal whose reason is `what`, ": " and the exception's text.
template <typename Step>
OSAL::Outcome<> Guarded(const std::string& what, Step&& step) {
    OSAL::Outcome<> outcome;
    Common::RunCaught(step, [&](const Common::Caught& caught) {
        const std::string why = caught.As<std::bad_alloc>() ? "out of memory" : caught.TextOr("unknown failure");
        outcome = OSAL::Refusal{what + ": " + why};
    });
    return outcome;
}

}  // namespace TarnSession
