#include "Console/Terminal.h"

#include "PlainText.h"

namespace TarnHost {

constexpr std::size_t bufferBytes = 1 << 16;

void Output::Steer(std::string_view text) {
    const std::lock_guard lock(m_mutex);
    if (!Ok()) return;
    m_pending += text;
    if (m_pending.size() >= bufferBytes) FlushLocked();
}

void Output::Flush() {
    const std::lock_guard lock(m_mutex);
    FlushLocked();
}

void Output::FlushLocked() {
    if (Ok()) m_readerGone = OSAL::WriteStream(m_stream, m_pending, m_error) == OSAL::StreamWrite::ReaderGone;
    m_pending.clear();
}

void Output::Write(std::string_view text) {
    if (IsTerminal())
        Steer(TarnMeasure::PrintableLines(text));
    else
        Steer(text);
}

void Console::Say(std::string_view text) {
    // a further line is set in, so that none passes for one of the program's own
    std::string line = "tarn: ";
    for (const char c : TarnMeasure::PrintableLines(text))
        line += c == '\n' ? std::string("\n      ") : std::string(1, c);
    err.Write(line + "\n");
    err.Flush();
}

}  // namespace TarnHost
