// Inputs by poll and read.
#include "OSAL/InputStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace OSAL {

namespace {

constexpr int lookAgainMs = 20;  // for a pipe's first writer

}  // namespace

InputStream InputStream::Standard() {
    return InputStream(STDIN_FILENO);
}

Outcome<InputStream> InputStream::Open(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return Refusal{std::generic_category().message(errno)};
    InputStream stream(descriptor);
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) return Refusal{"it is a folder"};
    stream.m_waitsForWriter = S_ISFIFO(status.st_mode);
    return stream;
}

InputStream::~InputStream() {
    if (m_handle > STDIN_FILENO) close(static_cast<int>(m_handle));
}

InputStream::InputStream(InputStream&& other) noexcept
    : m_handle(std::exchange(other.m_handle, -1)),
      m_waitsForWriter(other.m_waitsForWriter),
      m_error(std::move(other.m_error)) {}

InputStream::Got InputStream::Read(std::string& text, std::size_t most, const Wakeup& wakeup) {
    const std::size_t before = text.size();
    pollfd watched[] = {{static_cast<int>(wakeup.m_waiting), POLLIN, 0}, {static_cast<int>(m_handle), POLLIN, 0}};
    while (true) {
        if (poll(watched, 2, -1) < 0) {
            if (errno == EINTR) continue;
            break;
        }
        if (watched[0].revents != 0) return Got::WokenUp;
        if (watched[1].revents == 0) continue;
        text.resize(before + most);
        const ssize_t count = read(static_cast<int>(m_handle), text.data() + before, most);
        const int error = errno;
        text.resize(before + (count > 0 ? static_cast<std::size_t>(count) : 0));
        errno = error;
        if (count > 0) m_waitsForWriter = false;
        if (count > 0) return Got::Bytes;
        if (count < 0 && errno != EINTR && errno != EAGAIN) break;
        if (count == 0 && !m_waitsForWriter) return Got::End;
        if (count == 0) poll(watched, 1, lookAgainMs);
    }
    m_error = std::generic_category().message(errno);
    return Got::Failed;
}

}  // namespace OSAL
