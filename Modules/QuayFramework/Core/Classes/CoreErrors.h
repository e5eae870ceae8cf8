// Failures of the value layer: each is logged at error level, then thrown with its location.
#pragma once

#include <cstdint>
#include <string>

namespace Core {

/// Logs `text` at error level and throws it as a Utilities::Exception that carries the location.
[[noreturn]] void Fail(const std::string& text, const char* file, std::uint32_t line, const char* function);

/// Fails with "Assertion (condition) failed at function".
[[noreturn]] void FailAssertion(const char* condition, const char* file, std::uint32_t line, const char* function);

}  // namespace Core

#define CORE_ASSERT(condition, function)                                                   \
    do {                                                                                   \
        if (!(condition)) ::Core::FailAssertion(#condition, __FILE__, __LINE__, function); \
    } while (false)
