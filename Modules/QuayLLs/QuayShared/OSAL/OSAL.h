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
/// A path with "\\" separators as this system's files want it. The functions below take native paths.
std::string NativePath(std::string path);
/// True when the path exists and is a symbolic link, or a regular file with more than one hard link. Folders always
/// have several and are no links.
bool IsLink(const std::string& path);
int CopyFile(const std::string& from, const std::string& to);
/// Names in the folder in the order the system gives them, without ".", ".." and "result.csv". Empty when it can't be
/// read.
std::vector<std::string> ListDirectory(const std::string& folder);
bool DirectoryExists(const std::string& path);
/// Makes the folder and its missing parents; true when it stands there afterwards.
bool CreateDirectory(const std::string& path);
/// False for a folder. @throws OSAL::exception when the path is a symbolic link to anything but a folder
bool FileExists(const std::string& path);
/// Puts `from` in the place of `to` in one step; `to` stays as it was on failure.
int ReplaceFile(const std::string& from, const std::string& to);

// Files. A handle below 0 is invalid: writes to it fail, and closing it does nothing.
using FileHandle = std::intptr_t;
constexpr FileHandle InvalidFile = -1;
enum FileMode : unsigned { ReadOnly = 1, ReadWrite = 2, Append = 4 };
/// @param mode one or several of `FileMode`; without any of them the result is `InvalidFile`
/// @param openExisting false creates the file or empties it; `Append` opens it always
FileHandle OpenFile(const std::string& path, unsigned mode, bool openExisting);
/// All bytes or `Failure`.
int WriteFile(FileHandle file, const void* data, std::size_t size, std::size_t& written);
void CloseFile(FileHandle file);

/// Text of the system for an error code; `Failure` and an empty text for a code that it doesn't know.
int FormatSystemError(std::int32_t code, std::string& out);

// Time.
/// Local time by `strftime`.
int FormatLocalTime(const char* format, char* buffer, std::size_t size);
std::string FormatLocalTime(const char* format);
/// Forms of `TimeStamp`; each stands for one combination of fields.
enum TimeForm : unsigned {
    TimeHms = 1,                         // 14-03-05
    TimeYear = 2,                        // 2023
    TimeMonthDay = 4,                    // 12-11
    TimeDate = 6,                        // 2023-12-11
    TimeDateHms = 7,                     // 2023-12-11_14-03-05
    TimeWeek = 8,                        // week of the year, Monday first
    TimeWeekYear = 10,                   // 50_2023
    TimeMilliseconds = 16,               // 042
    TimeHmsMilliseconds = 17,            // 14-03-05.042
    TimeSecond = 32,                     // 05
    TimeSecondMilliseconds = 48,         // 05.042
    TimeMinute = 64,                     // 03
    TimeMinuteSecondMilliseconds = 112,  // 03-05.042
    TimeMonthDayYear = 128,              // 12-11-2023
};
/// Local time in one of the forms above; any other number gives false and an empty text.
bool TimeStamp(unsigned form, std::string& out);

/// Milliseconds of a clock that never goes back.
std::uint64_t GetTickCount();
/// Counts of the finest clock that never goes back, and how many of them make a second.
std::int64_t QueryPerformanceCounter();
std::int64_t QueryPerformanceFrequency();

/// Milliseconds since construction or the last `Start`.
class Stopwatch {
public:
    Stopwatch() { Start(); }
    void Start() { m_start = QueryPerformanceCounter(); }
    /// -1.0 should the clock have gone back.
    double ElapsedMs() const;

private:
    double m_msPerCount = 1e3 / static_cast<double>(QueryPerformanceFrequency());
    std::int64_t m_start = 0;
};

/// Gives the processor away for at least that long. Publishes nothing.
void SleepMs(std::uint32_t milliseconds);

/// Waits that are published, each as a scope of its own, when a hook is installed.
class Sleep {
public:
    static void Sec(std::uint32_t seconds);
    /// Sleeps all but the last 5 ms and spins through these, so that it ends on time.
    static void MilliSec(std::uint32_t milliseconds);
    /// Spins all the time: for short waits only.
    static void MicroSec(std::uint32_t microseconds);
};

/// Told of each published wait: `begin` before it, with the operation's name; `end` after it, with what `begin` gave.
struct SleepScopeHook {
    void* (*begin)(const char* function);
    void (*end)(void* scope);
};
/// The record must stay alive while it is installed; null detaches.
void SetSleepScopeHook(const SleepScopeHook* hook);

// The machine.
std::string GetComputerName();
/// Brand text of the processor as it reports it itself, else as the system knows it; empty when neither does.
std::string GetProcessorBrand();

enum ProcessorArchitecture : std::uint16_t {
    ArchitectureX86 = 0,
    ArchitectureArm = 5,
    ArchitectureX64 = 9,
    ArchitectureArm64 = 12,
    ArchitectureUnknown = 0xFFFF,
};

struct SystemInfo {
    std::uint16_t processorArchitecture = ArchitectureUnknown;
    std::uint32_t pageSize = 0;  // bytes
    void* minimumApplicationAddress = nullptr;
    void* maximumApplicationAddress = nullptr;
    std::uint64_t activeProcessorMask = 0;  // bit n: processor n is online; the first 64 only
    std::uint32_t numberOfProcessors = 0;   // online
    std::uint32_t processorType = 0;        // 586, 8664, or 0 for any other family
    std::uint16_t processorRevision = 0;    // model in the high byte and stepping in the low one, 0 if unknown
};
SystemInfo GetSystemInfo();

// Where a debugger listens. This system has no such place: the message is dropped unless a hook is installed.
using DebugOutputHook = void (*)(const char* text);
/// @return the hook until now
DebugOutputHook SetDebugOutputHook(DebugOutputHook hook);
void OutputDebugString(const char* text);

}  // namespace OSAL
