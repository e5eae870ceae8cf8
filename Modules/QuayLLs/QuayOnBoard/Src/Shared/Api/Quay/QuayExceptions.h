// The radio command layer's errors.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "Publisher/TypeAny.h"

class CQuayException : public std::exception {};

class AQuayErrLocException : public CQuayException {
public:
    AQuayErrLocException(const char* file, std::int32_t line) : m_file(file ? file : ""), m_line(line) {}
    const char* GetFile() const { return m_file.c_str(); }
    std::int32_t GetLine() const { return m_line; }

private:
    std::string m_file;
    std::int32_t m_line;
};

/// Message "<description> in <function>", with the place it was raised at. Building one reports it to the trace
/// publisher when one is attached.
class CQuayMsgException : public AQuayErrLocException {
public:
    CQuayMsgException(const char* description, const char* function, const char* file, std::int32_t line);
    CQuayMsgException(const CQuayMsgException&) = default;
    const char* what() const noexcept override { return m_message.c_str(); }

private:
    std::string m_message;
};

/// One error as the trace publisher gets it.
struct QuayErrorRecord {
    const char* fileName;
    std::int32_t errorLine;
    const char* funcName;
    const char* desc;
};
/// Installed by the layer that owns the trace publisher; null detaches.
using QuayErrorHook = void (*)(const QuayErrorRecord&);
void SetQuayErrorHook(QuayErrorHook hook);

namespace TypeAny {
/// The arguments of a published error, in the publisher's order: a null marker, then fileName, errorLine, funcName and
/// desc under these names.
std::vector<std::unique_ptr<placeholder>> ArgumentsOf(const QuayErrorRecord& record);
}  // namespace TypeAny
