// The border to code that throws in two forms, by value and as a pointer.
#pragma once

#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "Outcome.h"

namespace TarnHost {

/// Runs `step`; an exception becomes a failure whose message is `what`, ": " and the exception's text.
template <typename Step>
std::optional<Failure> Guarded(ExitStatus status, const std::string& what, Step&& step) {
    try {
        step();
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        return Failure{what + ": out of memory"};
    } catch (const std::exception& error) {
        return Failure{what + ": " + error.what(), status};
    } catch (std::exception* error) {
        const std::unique_ptr<std::exception> owned(error);
        return Failure{what + ": " + owned->what(), status};
    } catch (...) {
        return Failure{what + ": unknown failure", status};
    }
}

}  // namespace TarnHost
