#include "QuayExceptions.h"

#include <atomic>

namespace {
std::atomic<QuayErrorHook> errorHook{nullptr};

std::string Joined(const char* description, const char* function) {
    return std::string(description ? description : "") + " in " + (function ? function : "");
}
}  // namespace

CQuayMsgException::CQuayMsgException(const char* description, const char* function, const char* file, std::int32_t line)
    : AQuayErrLocException(file, line), m_message(Joined(description, function)) {
    if (const auto hook = errorHook.load())
        hook({GetFile(), line, function ? function : "", description ? description : ""});
}

void SetQuayErrorHook(QuayErrorHook hook) {
    errorHook = hook;
}
