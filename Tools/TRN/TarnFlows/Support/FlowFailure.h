// How an operation of the flows fails: log first, then throw.
#pragma once

#include <exception>
#include <string>

#include "Exceptions.h"
#include "Streams/Trace.h"

/// Logs `text` under the operation's name and throws it as a Common::Exception.
[[noreturn]] inline void ThrowLogged(const char* traceFunctionName, const std::string& text,
                                     unsigned level = Streams::TraceError) {
    TRACE(level, text);
    throw Common::Exception(text);
}

/// Only in a `catch (...)` block that ends the exception: its text. An exception thrown as a pointer is deleted.
inline std::string DropException() {
    try {
        throw;
    } catch (const std::exception* failure) {
        std::string text = failure->what();
        delete failure;
        return text;
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (...) {
        return "unknown exception";
    }
}
