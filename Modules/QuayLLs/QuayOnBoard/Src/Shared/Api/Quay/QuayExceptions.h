// The radio command layer's errors.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

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

/// Message "<description> in <function>", with the place it was raised at. Building one publishes
/// it when somebody listens.
class CQuayMsgException : public AQuayErrLocException {
public:
    CQuayMsgException(const char* description, const char* function, const char* file, std::int32_t line);
    CQuayMsgException(const CQuayMsgException&) = default;
    const char* what() const noexcept override { return m_message.c_str(); }

private:
    std::string m_message;
};
