#include "QuayExceptions.h"

#include "Publisher/Publisher.h"

namespace {
std::string Joined(const char* description, const char* function) {
    return std::string(description ? description : "") + " in " + (function ? function : "");
}
}  // namespace

CQuayMsgException::CQuayMsgException(const char* description, const char* function, const char* file, std::int32_t line)
    : AQuayErrLocException(file, line), m_message(Joined(description, function)) {
    if (!Publisher::IsPublishing()) return;
    Publisher::PublishRecord record;
    record.line = __LINE__;
    record.file = __FILE__;
    record.function = "CQuayMsgException::CQuayMsgException";
    record.signature = __PRETTY_FUNCTION__;
    Publisher::PublishException(std::move(record), "'\\0', fileName, errorLine, funcName, desc",
                                Publisher::ArgumentsOf(GetFile(), line, function, description));
}
