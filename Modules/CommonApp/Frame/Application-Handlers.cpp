// What each kind of failure prints, and the ladder that finds the handler of an exception.
#include <memory>

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

/// Handles what was thrown as a pointer, then deletes it.
template <typename Failure, typename Handler>
std::int32_t HandleAndDelete(const Failure* failure, Handler handler) {
    const std::unique_ptr<const Failure> owned(failure);
    return owned ? handler(*owned) : ExitUnknownException;
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

std::int32_t Application::HandleCurrentException() noexcept {
    using CmdLine::Exceptions::ParsingException;
    const auto parsing = [this](const ParsingException& e) { return HandleParsingException(e); };
    const auto errorLevel = [this](const ErrorLevelException& e) { return HandleErrorLevelException(e); };
    const auto errorCode = [this](const CSvErrorCodeException& e) { return HandleErrorCodeException(e); };
    const auto message = [this](const CSvMsgException& e) { return HandleMsgException(e); };
    const auto driver = [this](const CSvDriverMsgException& e) { return HandleDriverException(e); };
    const auto any = [this](const std::exception& e) { return HandleException(e); };
    try {
        try {
            throw;
        } catch (const ParsingException* e) {
            return HandleAndDelete(e, parsing);
        } catch (const ParsingException& e) {
            return parsing(e);
        } catch (const ErrorLevelException* e) {
            return HandleAndDelete(e, errorLevel);
        } catch (const ErrorLevelException& e) {
            return errorLevel(e);
        } catch (const CSvErrorCodeException* e) {
            return HandleAndDelete(e, errorCode);
        } catch (const CSvErrorCodeException& e) {
            return errorCode(e);
        } catch (const CSvMsgException* e) {
            return HandleAndDelete(e, message);
        } catch (const CSvMsgException& e) {
            return message(e);
        } catch (const CSvDriverMsgException* e) {
            return HandleAndDelete(e, driver);
        } catch (const CSvDriverMsgException& e) {
            return driver(e);
        } catch (const std::exception* e) {  // CSvLegacyMsgException among them
            return HandleAndDelete(e, any);
        } catch (const std::exception& e) {
            return any(e);
        }
    } catch (...) {
        return ExitUnknownException;  // no exception of ours, or one out of a handler
    }
}

std::optional<std::string> CurrentExceptionText() {
    try {
        throw;
    } catch (const std::exception* e) {
        return e ? std::optional<std::string>(e->what()) : std::nullopt;
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return std::nullopt;
    }
}

}  // namespace Common
