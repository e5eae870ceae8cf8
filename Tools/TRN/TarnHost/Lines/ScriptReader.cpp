#include "Lines/ScriptReader.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "Lines/KeyLine.h"

namespace TarnHost {
namespace {

constexpr std::size_t longestLine = 1 << 20;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string ReadFailure(const std::string& name) {
    return "can't read " + name + ": " + std::generic_category().message(errno);
}

}  // namespace

OSAL::Outcome<ScriptReader> ScriptReader::Open(const std::string& path, const InterruptWatch& watch) {
    if (path == "-") return ScriptReader(0, "standard input", watch);
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe nobody writes
    if (descriptor < 0) return OSAL::Refusal{ReadFailure("script '" + path + "'")};
    ScriptReader reader(descriptor, "script '" + path + "'", watch);
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode))
        return OSAL::Refusal{"can't read script '" + path + "': it is a folder"};
    reader.m_waitsForWriter = S_ISFIFO(status.st_mode);
    return reader;
}

ScriptReader::ScriptReader(ScriptReader&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)),
      m_name(std::move(other.m_name)),
      m_watch(other.m_watch),
      m_buffer(std::move(other.m_buffer)),
      m_number(other.m_number),
      m_isAtEnd(other.m_isAtEnd),
      m_waitsForWriter(other.m_waitsForWriter),
      m_trouble(std::move(other.m_trouble)) {}

ScriptReader::~ScriptReader() {
    if (m_descriptor > 0) ::close(m_descriptor);
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
    pollfd watched[] = {{m_descriptor, POLLIN, 0}, {m_watch->Descriptor(), POLLIN, 0}};
    while (::poll(watched, 2, -1) < 0 && errno == EINTR) {
    }
    if (watched[1].revents != 0) return true;  // the caller sees the signal
    std::array<char, 65536> block;
    const ssize_t count = ::read(m_descriptor, block.data(), block.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return true;
    if (count == 0 && m_waitsForWriter) {  // the pipe's other end isn't open yet
        pollfd signals{m_watch->Descriptor(), POLLIN, 0};
        ::poll(&signals, 1, 20);
        return true;
    }
    if (count > 0) m_waitsForWriter = false;
    if (count < 0) m_trouble = ReadFailure(m_name);
    if (count > 0) m_buffer.append(block.data(), static_cast<std::size_t>(count));
    return count > 0;
}

}  // namespace TarnHost
