// How the host's own parts say that something failed: a value with a message for the person, and the exit status.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace TarnHost {

enum ExitStatus : int {
    Success = 0,
    Failed = 1,
    WrongUsage = 2,
    NoAdapter = 3,      ///< the adapter as described can't be opened
    Interrupted = 130,  ///< as a shell shows an end by Ctrl-C
    Terminated = 143,
    ReaderGone = 141,  ///< as a shell shows an end by a closed pipe
};

/// One sentence without a closing full stop, and the status that the program then ends with.
struct Failure {
    std::string message;
    ExitStatus status = Failed;
};

/// A value, or why there is none.
template <typename T>
class Result {
public:
    Result(T value) : m_content(std::move(value)) {}
    Result(Failure failure) : m_content(std::move(failure)) {}

    explicit operator bool() const { return std::holds_alternative<T>(m_content); }
    T& operator*() { return std::get<T>(m_content); }
    const T& operator*() const { return std::get<T>(m_content); }
    const T* operator->() const { return &std::get<T>(m_content); }
    T* operator->() { return &std::get<T>(m_content); }
    const Failure& Why() const { return std::get<Failure>(m_content); }

private:
    std::variant<T, Failure> m_content;
};

}  // namespace TarnHost
