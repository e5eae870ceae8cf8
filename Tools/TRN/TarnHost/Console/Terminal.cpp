#include "Console/Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "PlainText.h"

namespace TarnHost {

constexpr std::size_t bufferBytes = 1 << 16;

void Output::Write(std::string_view text) {
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
    std::string_view rest = m_pending;
    while (Ok() && !rest.empty()) {
        const ssize_t written = ::write(m_descriptor, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {  // someone else made the descriptor non-blocking
            pollfd ready{m_descriptor, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno == EPIPE) {
            m_readerGone = true;
        } else if (errno != EINTR) {
            m_error = std::generic_category().message(errno);
        }
    }
    m_pending.clear();
}

bool Output::IsTerminal() const {
    return ::isatty(m_descriptor) == 1;
}

std::size_t Output::Columns() const {
    winsize size{};
    return IsTerminal() && ::ioctl(m_descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void Output::WriteForeign(std::string_view text) {
    Write(IsTerminal() ? TarnMeasure::PrintableLines(text) : std::string(text));
}

void Console::Say(std::string_view text) {
    // a further line is set in, so that none passes for one of the program's own
    std::string line = "tarn: ";
    for (const char c : TarnMeasure::PrintableLines(text))
        line += c == '\n' ? std::string("\n      ") : std::string(1, c);
    err.Write(line + "\n");
    err.Flush();
}

void OccupyStandardDescriptors() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        // open() gives the lowest free number, which is this one
        if (::fcntl(descriptor, F_GETFD) == -1 && ::open("/dev/null", O_RDONLY) != descriptor) return;
    }
}

}  // namespace TarnHost
