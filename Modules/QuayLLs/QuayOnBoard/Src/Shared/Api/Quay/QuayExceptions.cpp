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

namespace TypeAny {

namespace {
template <typename T>
std::unique_ptr<placeholder> Named(const char* name, T value) {
    auto argument = std::make_unique<TypeContainer<T>>(value);
    argument->SetName(name);
    return argument;
}
}  // namespace

std::vector<std::unique_ptr<placeholder>> ArgumentsOf(const QuayErrorRecord& record) {
    std::vector<std::unique_ptr<placeholder>> arguments;
    arguments.push_back(std::make_unique<TypeContainer<int>>('\0'));
    arguments.push_back(Named("fileName", record.fileName));
    arguments.push_back(Named<int>("errorLine", record.errorLine));
    arguments.push_back(Named("funcName", record.funcName));
    arguments.push_back(Named("desc", record.desc));
    return arguments;
}

}  // namespace TypeAny
