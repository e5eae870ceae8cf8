// Other programs: finding, starting and ending them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "OSAL/Files.h"
#include "OSAL/Outcome.h"

namespace OSAL {

/// A started program. All zero: none.
struct ProcessInformation {
    std::uint32_t processId = 0;
    std::uint64_t startTime = 0;  // by the system's own count; tells it from a later one with the same number
};

struct ProcessOptions {
    /// Runs in the caller's console; else in a session of its own, without input.
    bool callersConsole = false;
    /// Becomes standard output and error; without it they are the console's, or go nowhere.
    FileHandle output = InvalidFile;
    /// Is asked to end when the thread that starts it is gone, whatever ended that. Only in the caller's console.
    bool endsWithCaller = false;
    /// Texts "NAME=VALUE" that it gets beside the caller's environment.
    std::vector<std::string> environment{};
};

/// Whether a program of that name runs, given with or without ".exe"; names match as a whole, case included.
/// @param twice  wants two of them at least; so does the name "TLMQ"
bool IsProcessRunning(const std::string& name, bool twice);
/// The programs of that name that run, by the same rule.
std::vector<ProcessInformation> FindProcesses(const std::string& name);
/// Whether any connection or listener of this machine has that port at either end.
bool IsPortOpen(std::uint16_t port);
/// Starts "directory/name" there, with `arguments` split at blanks outside double quotes.
/// False when it can't be started: `GetLastError` has the reason, and `information` is all zero.
bool StartProcess(const std::string& directory, const std::string& name, const std::string& arguments,
                  ProcessInformation& information, const ProcessOptions& options = {});
/// Ends a program that was started above: asks it first, forces it after 5 seconds, and waits for its end 60 seconds
/// in all. True when it is gone, be it for long.
bool TerminateHandle(const ProcessInformation& information);
/// Whether a program that was started above has not ended.
bool IsRunning(const ProcessInformation& information);
/// The process that started this one, or the one that took its place when that was gone.
std::uint32_t GetParentProcessId();
/// Whether a process of that number hasn't ended.
bool IsProcessThere(std::uint32_t processId);
/// Ends every program of that name but the caller. False when one of them is still there.
bool TerminateByName(const std::string& name);
std::uint32_t GetCurrentProcessId();
/// Whether a debugger follows this process.
bool IsDebuggerPresent();
/// The system's error number of this thread's last call that failed.
std::uint32_t GetLastError();

/// "-C "a b" c" is split into "-C", "a b" and "c".
std::vector<std::string> SplitArguments(const std::string& arguments);

/// Runs a shell command that can gain no rights: no capabilities, none to be had from set-user-id programs.
/// @return what it printed to standard output, and its exit status (128 and the signal's number when a signal ended it)
struct RestrictedResult {
    std::string output;
    int status = 0;
};
Outcome<RestrictedResult> RunRestricted(const std::string& command);

/// Runs a program of an absolute path without a shell, its input and output going nowhere.
/// @return its exit status; -1 when it can't be started or a signal ended it
int RunProgram(const std::vector<std::string>& commandLine);

}  // namespace OSAL
