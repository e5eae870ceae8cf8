// How far a long job is, on one line of the terminal that is written over and over.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

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
    /// Ten times a second at most; the other calls do nothing.
    void Show(const std::string& text);
    void Clear();
    /// Something else was written on its line.
    void Forget() { m_isShown = false; }

private:
    Output& m_terminal;
    bool m_isOn;
    bool m_isShown = false;
    std::chrono::steady_clock::time_point m_last{};
};

}  // namespace TarnHost
