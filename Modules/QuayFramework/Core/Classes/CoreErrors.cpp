#include "CoreErrors.h"

#include "Exceptions.h"
#include "Format.h"
#include "Streams/LogPrinter.h"
#include "Streams/Trace.h"

namespace Core {

void Fail(const std::string& text, const char* file, std::uint32_t line, const char* function) {
    SingletonWrapper<Utilities::LogPrinter>::accessObject()->Print(Streams::TraceError, file, line, function,
                                                                   text.c_str());
    Utilities::Exception failure(text);
    failure.SetLocation(new Utilities::ErrorLocation(file, line, function));
    throw failure;
}

void FailAssertion(const char* condition, const char* file, std::uint32_t line, const char* function) {
    Fail(Common::Format("Assertion (${1}) failed at ${2}") % condition % function, file, line, function);
}

}  // namespace Core
