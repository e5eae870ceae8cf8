// The border to code that throws in two forms, by value and as a pointer.
#pragma once

#include <new>
#include <optional>
#include <string>

#include "Caught.h"
#include "Outcome.h"

namespace TarnHost {

/// Runs `step`; an exception becomes a failure whose message is `what`, ": " and the exception's text.
template <typename Step>
std::optional<Failure> Guarded(ExitStatus status, const std::string& what, Step&& step) {
    std::optional<Failure> failure;
    Common::RunCaught(step, [&](const Common::Caught& caught) {
        failure = caught.As<std::bad_alloc>() ? Failure{what + ": out of memory"}
                                              : Failure{what + ": " + caught.TextOr("unknown failure"), status};
    });
    return failure;
}

}  // namespace TarnHost
