// What this system asks of the operating system: files, paths, time, the machine. No other folder makes system calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace OSAL {

/// 0 is success; 13 is this layer's general failure.
constexpr int Success = 0;
constexpr int Failure = 13;

class exception : public std::exception {
public:
    explicit exception(const char* message);
    explicit exception(const std::string& message) : exception(message.c_str()) {}
    const char* what() const noexcept override { return m_known ? m_message.c_str() : "Unknown exception"; }

private:
    std::string m_message;
    bool m_known;
};

class invalid_argument : public exception {
public:
    using exception::exception;
};

// Paths.
/// Text up to and with the last separator ("/" or "\"); empty when there is none.
std::string DirectoryOf(const std::string& path);
/// Text behind the last separator.
std::string FileNameOf(const std::string& path);
/// Text before the last ".".
std::string StemOf(const std::string& name);
/// Every "/" becomes "\", then each doubled "\" one.
void NormalizePath(std::string& path);
/// Directory of the running executable, with its closing separator.
int GetModuleDirectory(std::string& out);
/// True when the path exists and is a symbolic link or a file with more than one hard link.
bool IsLink(const std::string& path);
int CopyFile(const std::string& from, const std::string& to);
/// Names in the folder in the order the system gives them, without ".", ".." and "result.csv". Empty when it can't be
/// read.
std::vector<std::string> ListDirectory(const std::string& folder);

// Files. A handle below 0 is invalid: writes to it fail, and closing it does nothing.
using FileHandle = std::intptr_t;
constexpr FileHandle InvalidFile = -1;
enum FileMode : unsigned { ReadOnly = 1, ReadWrite = 2, Append = 4 };
/// @param openExisting false creates the file or empties it; `Append` opens it always
FileHandle OpenFile(const std::string& path, unsigned mode, bool openExisting);
/// All bytes or `Failure`.
int WriteFile(FileHandle file, const void* data, std::size_t size, std::size_t& written);
void CloseFile(FileHandle file);

// Text of the system for an error code.
int FormatSystemError(std::int32_t code, std::string& out);

// Time.
/// Local time by `strftime`.
int FormatLocalTime(const char* format, char* buffer, std::size_t size);
std::string FormatLocalTime(const char* format);
/// Milliseconds of a clock that never goes back.
std::uint64_t GetTickCount();
void Sleep(std::uint32_t milliseconds);

// The machine.
std::string GetComputerName();

// Where a debugger listens: on this system the message is dropped unless a hook is installed.
using DebugOutputHook = void (*)(const char* text);
void SetDebugOutputHook(DebugOutputHook hook);
void OutputDebugString(const char* text);

}  // namespace OSAL
