// How this layer fails: result codes, its exceptions, and where a debugger would read them.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace OSAL {

/// 0 is success; 13 is this layer's general failure.
constexpr int Success = 0;
constexpr int Failure = 13;

class exception : public std::exception {
public:
    explicit exception(const char* message);
    explicit exception(const std::string& message) : exception(message.c_str()) {}
    const char* what() const noexcept override { return m_known ? m_message.c_str() : "Unknown exception"; }

private:
    std::string m_message;
    bool m_known;
};

class invalid_argument : public exception {
public:
    using exception::exception;
};

/// Text of the system for an error code; `Failure` and an empty text for a code that it doesn't know.
int FormatSystemError(std::int32_t code, std::string& out);

// Where a debugger listens. This system has no such place: the message is dropped unless a hook is installed.
using DebugOutputHook = void (*)(const char* text);
/// @return the hook until now
DebugOutputHook SetDebugOutputHook(DebugOutputHook hook);
void OutputDebugString(const char* text);

}  // namespace OSAL
