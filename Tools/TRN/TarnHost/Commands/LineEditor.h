// Lines from a person: editing, history and completion on a terminal, plain lines from a pipe.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Console/InterruptWatch.h"
#include "OSAL/InputStream.h"

namespace TarnHost {

class LineEditor {
public:
    enum class End { None, EndOfInput, Interrupted, TooLong };
    struct Line {
        std::string text;
        End end = End::None;
    };

    /// @param historyFile  read now, gets each line; empty keeps none
    LineEditor(InterruptWatch& watch, std::string historyFile);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    /// True on a terminal, where lines are edited.
    bool IsEditing() const;
    /// Waits for a line. Ctrl-C gives up the line begun: `Interrupted`, and the signal is forgotten.
    /// A line of a pipe beyond 1 MiB is dropped as far as it came: `TooLong`.
    Line Read(const std::string& prompt);
    /// Where a history of this person's lines belongs; empty when there is no home.
    static std::string DefaultHistoryFile();

private:
    struct Terminal;
    InterruptWatch& m_watch;
    OSAL::InputStream m_input = OSAL::InputStream::Standard();
    std::unique_ptr<Terminal> m_terminal;
    std::string m_pending;  // of a pipe, behind the last line taken
};

}  // namespace TarnHost
