// How far a long job is, on one line of the terminal that is written over and over.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

#include "Console/Terminal.h"

namespace TarnHost {

/// "12 of 300 files, 25.3 files/s, 11 s left"; rate and rest only once something is done.
std::string ProgressText(std::size_t done, std::size_t total, std::chrono::duration<double> elapsed,
                         const std::string& unit = "files");

/// A status line. Nothing is written when the output is no terminal.
class StatusLine {
public:
    explicit StatusLine(Output& terminal) : m_terminal(terminal), m_isOn(terminal.IsTerminal()) {}
    ~StatusLine() { Clear(); }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    bool IsOn() const { return m_isOn; }
    void Show(const std::string& text);
    void Clear();

private:
    Output& m_terminal;
    bool m_isOn;
    bool m_isShown = false;
};

/// Counts the lines of a growing result file, reading only what is new. A file that stood there before the count began
/// doesn't count until it is written anew.
class ResultCounter {
public:
    explicit ResultCounter(std::filesystem::path file);

    /// Result lines so far, the header not counted.
    std::size_t Count();
    /// True when the file was written since the count began.
    bool IsFresh() const;

private:
    struct Stamp {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type time{};
        bool operator==(const Stamp&) const = default;
    };
    Stamp Now() const;

    std::filesystem::path m_file;
    Stamp m_before;
    std::uintmax_t m_read = 0;
    std::size_t m_lines = 0;
};

/// Shows the progress of an analysis from a thread of its own, by the result file that the analysis writes, until
/// Stop(). Does nothing when the output is no terminal.
class AnalysisProgress {
public:
    AnalysisProgress(Output& terminal, const std::filesystem::path& resultFile, std::size_t total);
    ~AnalysisProgress() { Stop(); }
    AnalysisProgress(const AnalysisProgress&) = delete;
    AnalysisProgress& operator=(const AnalysisProgress&) = delete;

    /// Takes the status line away; the terminal then is the caller's. Thread: from any, more than once.
    void Stop();

private:
    void Work();

    StatusLine m_line;
    ResultCounter m_counter;
    std::size_t m_total;
    std::mutex m_mutex;
    std::condition_variable m_wakeUp;
    bool m_isStopping = false;
    std::mutex m_joinMutex;
    std::thread m_thread;
};

}  // namespace TarnHost
