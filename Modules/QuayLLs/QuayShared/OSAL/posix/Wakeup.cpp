// A wake-up as a pipe that holds a byte.
#include "OSAL/Wakeup.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace OSAL {

Wakeup::Wakeup() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    m_waiting = ends[0];
    m_setting = ends[1];
}

Wakeup::~Wakeup() {
    close(static_cast<int>(m_waiting));
    close(static_cast<int>(m_setting));
}

void Wakeup::Set() const noexcept {
    const int savedErrno = errno;
    [[maybe_unused]] const auto written = write(static_cast<int>(m_setting), "!", 1);  // a full pipe is set already
    errno = savedErrno;
}

void Wakeup::Clear() const noexcept {
    char drained[16];
    while (read(static_cast<int>(m_waiting), drained, sizeof drained) > 0) {
    }
}

bool Wakeup::WaitBeside(const Wakeup& other, int timeoutMs) const {
    pollfd watched[] = {{static_cast<int>(m_waiting), POLLIN, 0}, {static_cast<int>(other.m_waiting), POLLIN, 0}};
    return poll(watched, 2, timeoutMs) > 0 && watched[0].revents != 0;
}

}  // namespace OSAL
