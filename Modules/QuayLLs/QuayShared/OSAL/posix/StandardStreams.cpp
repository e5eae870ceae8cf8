// The standard streams as descriptors 0 to 2.
#include "OSAL/StandardStreams.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace OSAL {

StreamWrite WriteStream(StandardStream stream, std::string_view text, std::string& why) {
    const int descriptor = static_cast<int>(stream);
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {  // someone else made the descriptor non-blocking
            pollfd ready{descriptor, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (errno == EPIPE) {
            return StreamWrite::ReaderGone;
        } else if (errno != EINTR) {
            why = std::generic_category().message(errno);
            return StreamWrite::Failed;
        }
    }
    return StreamWrite::Done;
}

bool IsTerminal(StandardStream stream) {
    return isatty(static_cast<int>(stream)) == 1;
}

std::size_t TerminalColumns(StandardStream stream) {
    winsize size{};
    return IsTerminal(stream) && ioctl(static_cast<int>(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void OccupyStandardStreams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // open() gives the lowest free number, which is this one
        if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", O_RDONLY) != descriptor) return;
    }
}

}  // namespace OSAL
