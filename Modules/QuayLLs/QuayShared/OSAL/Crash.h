// A report of how the program crashed.
#pragma once

#include <string>

namespace OSAL {

/// Writes a text report (signal, registers, call stack, memory map) to the file
/// "<temp folder>/Crash/YYYYMMDD-hhmmss-<process>-<thread>.dmp", and tells the debug output of it.
/// @param exceptionPointers  the record that the crash handler has; null for a report of the running program
/// @return always 1
int WriteCrashDump(const void* exceptionPointers);

/// From now on a crash writes a report, says on standard error where it is, and ends the program by the same signal as
/// it would have without. A handler that was installed before for one of these signals stays.
void InstallCrashReports();

/// Gives the calling thread a stack for its own crash, until its end, so that a stack that overflowed can be told of.
/// The thread that installs the reports and those of `Thread` have one.
void PrepareCrashStack();

/// Folder of the reports, with its closing separator. It is there after the first report.
std::string CrashFolder();

}  // namespace OSAL
