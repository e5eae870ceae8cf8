#include "OSAL/Errors.h"

#include <atomic>
#include <system_error>

namespace OSAL {

namespace {
std::atomic<DebugOutputHook> debugOutputHook{nullptr};
}  // namespace

DebugOutputHook SetDebugOutputHook(DebugOutputHook hook) {
    return debugOutputHook.exchange(hook);
}

void OutputDebugString(const char* text) {
    if (const auto hook = debugOutputHook.load(); hook && text) hook(text);
}

exception::exception(const char* message) : m_message(message ? message : ""), m_known(message != nullptr) {
    OutputDebugString(message);
}

int FormatSystemError(std::int32_t code, std::string& out) {
    out = std::system_category().message(code);
    if (!out.starts_with("Unknown error")) return Success;
    out.clear();
    return Failure;
}

}  // namespace OSAL
