// What each kind of failure prints, and the ladder that finds the handler of an exception.
#include "Format.h"
#include "Frame/Application.h"
#include "Streams/AppStreams.h"

namespace Common {

namespace {

constexpr std::uint64_t locationLevel = 1;

const char* OrEmpty(const char* text) {
    return text ? text : "";
}

void PrintError(const std::string& message) {
    Streams::AppStreams::GetError() << "\nError: " << message << std::endl;
}

void PrintLocation(const SvErrorLocation& location) {
    Streams::AppStreams::GetDebug(locationLevel)
        << OrEmpty(location.GetFile()) << "(" << location.GetLine() << ")" << std::endl;
}

}  // namespace

std::int32_t Application::HandleException(const std::exception& failure) {
    PrintError(failure.what());
    return ExitException;
}

std::int32_t Application::HandleDriverException(const CSvDriverMsgException& failure) {
    PrintError(std::string(failure.what()) + ", " + std::to_string(failure.GetCode()));
    PrintLocation(failure);
    return ExitLocatedMessage;
}

std::int32_t Application::HandleMsgException(const CSvMsgException& failure) {
    PrintError(OrEmpty(failure.GetDescription()));
    PrintLocation(failure);
    return ExitLocatedMessage;
}

std::int32_t Application::HandleErrorCodeException(const CSvErrorCodeException& failure) {
    std::string details;
    OSAL::FormatSystemError(failure.GetCode(), details);
    PrintError(Format("${1}\nDetails: (${2}) ${3}") % failure.what() % failure.GetCode() % details);
    PrintLocation(failure);
    return failure.GetCode();
}

std::int32_t Application::HandleErrorLevelException(const ErrorLevelException& failure) {
    if (*failure.what()) Streams::AppStreams::GetError() << "\n" << failure.what() << std::endl;
    return static_cast<std::int32_t>(failure.GetLevel());
}

std::int32_t Application::HandleParsingException(const CmdLine::Exceptions::ParsingException& failure) {
    const std::string advice = Format("Run '${1} -?' to see the list of allowed command line options") %
                               m_context.GetGlobal().GetOrEmpty("Application.Filename");
    Streams::AppStreams::GetError() << "\nCommand line error: " << failure.what() << "\n"
                                    << advice << "\n"
                                    << std::endl;
    return ExitCommandLine;
}

std::int32_t Application::HandleCaught(const Caught& caught) noexcept {
    using CmdLine::Exceptions::ParsingException;
    try {
        if (const auto* parsing = caught.As<ParsingException>()) return HandleParsingException(*parsing);
        if (const auto* level = caught.As<ErrorLevelException>()) return HandleErrorLevelException(*level);
        if (const auto* code = caught.As<CSvErrorCodeException>()) return HandleErrorCodeException(*code);
        if (const auto* message = caught.As<CSvMsgException>()) return HandleMsgException(*message);
        if (const auto* driver = caught.As<CSvDriverMsgException>()) return HandleDriverException(*driver);
        // CSvLegacyMsgException among them
        if (const auto* failure = caught.As<std::exception>()) return HandleException(*failure);
    } catch (...) {
        const Caught fromHandler;  // it has no handler of its own
    }
    return ExitUnknownException;
}

}  // namespace Common
