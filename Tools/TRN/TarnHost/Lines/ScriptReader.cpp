#include "Lines/ScriptReader.h"

#include <utility>

#include "Lines/KeyLine.h"

namespace TarnHost {
namespace {

constexpr std::size_t longestLine = 1 << 20;
constexpr std::size_t longestRead = 1 << 16;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string ReadFailure(const std::string& name, const std::string& why) {
    return "can't read " + name + ": " + why;
}

}  // namespace

OSAL::Outcome<ScriptReader> ScriptReader::Open(const std::string& path, const InterruptWatch& watch) {
    if (path == "-") return ScriptReader(OSAL::InputStream::Standard(), "standard input", watch);
    const std::string name = "script '" + path + "'";
    auto input = OSAL::InputStream::Open(path);
    if (!input) return OSAL::Refusal{ReadFailure(name, input.Reason())};
    return ScriptReader(std::move(*input), name, watch);
}

std::optional<ScriptLine> ScriptReader::Next() {
    while (auto raw = RawLine()) {
        std::string_view text = *raw;
        if (++m_number == 1 && text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
        if (text.ends_with('\r')) text.remove_suffix(1);
        text = StripComment(text);
        if (!text.empty()) return ScriptLine{m_number, std::string(text)};
    }
    return std::nullopt;
}

std::optional<std::string> ScriptReader::RawLine() {
    std::size_t searched = 0;
    while (!m_watch->IsRequested() && !m_trouble) {
        const auto end = m_buffer.find('\n', searched);
        if (end != std::string::npos) {
            std::string line = m_buffer.substr(0, end);
            m_buffer.erase(0, end + 1);
            return line;
        }
        searched = m_buffer.size();
        if (searched > longestLine) {
            m_trouble = "line " + std::to_string(m_number + 1) + " of " + m_name + " is longer than 1 MiB";
        } else if (m_isAtEnd) {
            if (m_buffer.empty()) return std::nullopt;
            return std::exchange(m_buffer, {});
        } else {
            m_isAtEnd = !Fill();
        }
    }
    return std::nullopt;
}

/// False at the end of the input, and after a failure.
bool ScriptReader::Fill() {
    using Got = OSAL::InputStream::Got;
    const Got got = m_input.Read(m_buffer, longestRead, m_watch->AnyCame());
    if (got == Got::Failed) m_trouble = ReadFailure(m_name, m_input.Error());
    return got == Got::Bytes || got == Got::WokenUp;  // the caller sees who woke it
}

}  // namespace TarnHost
