// Command lines from a script file or from standard input, one after the other as they arrive.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "Console/InterruptWatch.h"
#include "OSAL/InputStream.h"
#include "OSAL/Outcome.h"

namespace TarnHost {

struct ScriptLine {
    std::size_t number = 0;  ///< from 1, blank and comment lines counted
    std::string text;
};

/// Reads line by line, so that another program can write a line, wait for its answer, and write the next.
/// A byte order mark at the start and carriage returns at line ends are dropped.
class ScriptReader {
public:
    /// @param path  a file, or "-" for standard input
    static OSAL::Outcome<ScriptReader> Open(const std::string& path, const InterruptWatch& watch);

    /// The next line that holds more than a comment. Nothing at the end, after a signal, or after a failure.
    std::optional<ScriptLine> Next();
    /// Why reading ended early.
    const std::optional<std::string>& Trouble() const { return m_trouble; }

private:
    ScriptReader(OSAL::InputStream input, std::string name, const InterruptWatch& watch)
        : m_input(std::move(input)), m_name(std::move(name)), m_watch(&watch) {}
    std::optional<std::string> RawLine();
    bool Fill();

    OSAL::InputStream m_input;
    std::string m_name;
    const InterruptWatch* m_watch;
    std::string m_buffer;
    std::size_t m_number = 0;
    bool m_isAtEnd = false;
    std::optional<std::string> m_trouble;
};

}  // namespace TarnHost
