// The exception families that this system throws. They come from different layers and are not merged.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace Common {

/// Application control flow: one message.
class Exception : public std::exception {
public:
    explicit Exception(std::string message) : m_message(std::move(message)) {}
    const char* what() const noexcept override { return m_message.c_str(); }

private:
    std::string m_message;
};

/// Ends a run early with an exit level and an optional message.
class ErrorLevelException : public Exception {
public:
    ErrorLevelException(std::string message, std::uint32_t level) : Exception(std::move(message)), m_level(level) {}
    std::uint32_t GetLevel() const { return m_level; }

private:
    std::uint32_t m_level;
};

}  // namespace Common

namespace CmdLine::Exceptions {

/// A command line that can't be understood; thrown as a pointer. The five children stand in CmdLine.h.
class ParsingException : public Common::Exception {
public:
    using Common::Exception::Exception;
};

}  // namespace CmdLine::Exceptions

/// A text that may be absent: null and empty both read back as null.
class OptionalText {
public:
    OptionalText() = default;
    explicit OptionalText(const char* text) { Set(text); }
    void Set(const char* text) { m_text = text ? text : ""; }
    const char* Get() const { return m_text.empty() ? nullptr : m_text.c_str(); }

private:
    std::string m_text;
};

/// Where an error was raised.
class SvErrorLocation {
public:
    SvErrorLocation() = default;
    SvErrorLocation(const char* file, std::uint32_t line, const char* function)
        : m_function(function), m_file(file), m_line(line) {}

    virtual const char* GetFunction() const { return m_function.Get(); }
    virtual void SetFunction(const char* function) { m_function.Set(function); }
    virtual const char* GetFile() const { return m_file.Get(); }
    virtual void SetFile(const char* file) { m_file.Set(file); }
    virtual std::uint32_t GetLine() const { return m_line; }
    virtual void SetLine(unsigned line) { m_line = line; }
    virtual ~SvErrorLocation() = default;

private:
    OptionalText m_function;
    OptionalText m_file;
    std::uint32_t m_line = 0;
};

class SvErrorDescription : public virtual SvErrorLocation {
public:
    virtual const char* GetDescription() const { return m_description.Get(); }
    virtual void SetDescription(const char* description) { m_description.Set(description); }

private:
    OptionalText m_description;
};

class CSvException : public std::exception {};

class ASvErrorLocException : public virtual SvErrorLocation, public virtual CSvException {};

/// A message with its location; thrown by value or as a pointer.
class CSvMsgException : public virtual SvErrorDescription, public virtual ASvErrorLocException {
public:
    CSvMsgException(const char* description, const char* file, std::uint32_t line, const char* function) {
        SetDescription(description);
        SetFile(file);
        SetLine(line);
        SetFunction(function);
    }
    const char* what() const noexcept override { return GetDescription() ? GetDescription() : ""; }
};

/// What the three catch-only types below share: a message, a numeric code and a location.
class CSvCodedException : public virtual SvErrorLocation, public virtual CSvException {
public:
    CSvCodedException(const char* message, std::int32_t code, const char* file, std::uint32_t line,
                      const char* function)
        : SvErrorLocation(file, line, function), m_message(message ? message : ""), m_code(code) {}
    const char* what() const noexcept override { return m_message.c_str(); }
    std::int32_t GetCode() const { return m_code; }

private:
    std::string m_message;
    std::int32_t m_code;
};

class CSvErrorCodeException : public CSvCodedException {
public:
    CSvErrorCodeException(const char* message, std::int32_t code, const char* file, std::uint32_t line,
                          const char* function)
        : SvErrorLocation(file, line, function), CSvCodedException(message, code, file, line, function) {}
};

class CSvDriverMsgException : public CSvCodedException {
public:
    CSvDriverMsgException(const char* message, std::int32_t code, const char* file, std::uint32_t line,
                          const char* function)
        : SvErrorLocation(file, line, function), CSvCodedException(message, code, file, line, function) {}
};

class CSvLegacyMsgException : public CSvCodedException {
public:
    CSvLegacyMsgException(const char* message, std::int32_t code, const char* file, std::uint32_t line,
                          const char* function)
        : SvErrorLocation(file, line, function), CSvCodedException(message, code, file, line, function) {}
};

namespace Utilities {

class ErrorLocation {
public:
    ErrorLocation(std::string file, std::uint32_t line, std::string function)
        : m_line(line), m_file(std::move(file)), m_function(std::move(function)) {}
    virtual ~ErrorLocation() = default;
    virtual std::uint32_t GetLine() const { return m_line; }
    virtual const std::string& GetFile() const { return m_file; }
    virtual const std::string& GetFunction() const { return m_function; }

private:
    std::uint32_t m_line;
    std::string m_file;
    std::string m_function;
};

/// Thrown by the typed-value layer and the analyser: by value, or as a pointer where a vector primitive failed.
class Exception : public std::exception {
public:
    explicit Exception(std::string message) : m_message(std::move(message)) {}
    Exception(const Exception& other)
        : std::exception(other),
          m_message(other.m_message),
          m_location(other.m_location ? std::make_unique<ErrorLocation>(*other.m_location) : nullptr) {}
    Exception& operator=(const Exception&) = delete;

    ~Exception() override = default;
    const char* what() const noexcept override { return m_message.c_str(); }
    /// Takes ownership; a location already held is destroyed.
    virtual void SetLocation(ErrorLocation* location) { m_location.reset(location); }
    const ErrorLocation* GetLocation() const { return m_location.get(); }

private:
    std::string m_message;
    std::unique_ptr<ErrorLocation> m_location;
};

}  // namespace Utilities
