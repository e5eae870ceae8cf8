// The one owner of a caught exception. This system throws its failures by value or as a pointer; whoever ends one
// asks here for its text and its kind, and a pointer is deleted whatever the way out.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <utility>

namespace Common {

/// The exception being handled: lives in the catch block that ends the exception.
class Caught {
public:
    Caught() noexcept;
    Caught(const Caught&) = delete;
    Caught& operator=(const Caught&) = delete;

    /// The exception as a `Failure`, or null when it is of another kind.
    template <typename Failure>
    const Failure* As() const {
        return dynamic_cast<const Failure*>(m_failure);
    }
    /// `what()`, or null when it is no std::exception.
    const char* Text() const noexcept { return m_failure ? m_failure->what() : nullptr; }
    std::string TextOr(const char* other) const { return m_failure ? m_failure->what() : other; }

private:
    std::unique_ptr<const std::exception> m_owned;
    const std::exception* m_failure = nullptr;
};

/// Runs `step` and hands what it throws to `handle`, which takes a `const Caught&`.
/// @return whether the step ended well
template <typename Step, typename Handler>
bool RunCaught(Step&& step, Handler&& handle) {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (...) {
        std::forward<Handler>(handle)(Caught());
        return false;
    }
}

}  // namespace Common
