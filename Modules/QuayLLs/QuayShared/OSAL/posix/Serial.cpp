#include "OSAL/Serial.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <limits>
#include <utility>

#include "OSAL/Time.h"
#include "OSAL/posix/Descriptor.h"

namespace OSAL {

namespace {

constexpr std::size_t mostBytes = 1024;  // of one read

constexpr std::pair<std::uint32_t, speed_t> rates[] = {
    {1200, B1200},   {2400, B2400},     {4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},
    {57600, B57600}, {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600},
};

}  // namespace

int SerialPort::Open(const std::string& device, const SerialOptions& options) {
    Close();
    const auto* const rate =
        std::find_if(std::begin(rates), std::end(rates), [&](const auto& row) { return row.first == options.baud; });
    if (rate == std::end(rates)) return EINVAL;
    Descriptor port(open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    termios settings{};
    if (!port || tcgetattr(port.Get(), &settings) != 0) return errno;
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    if (cfsetspeed(&settings, rate->second) != 0 || tcsetattr(port.Get(), TCSANOW, &settings) != 0) return errno;
    m_port = port.Release();
    m_timeoutMs = options.timeoutMs;
    SetTimeouts(0, 0, 0, 0, 0);
    return 0;
}

int SerialPort::InputCount() const {
    int count = 0;
    pollfd state{Handle(m_port), POLLIN, 0};
    if (ioctl(Handle(m_port), FIONREAD, &count) != 0) return -1;
    const bool gone = poll(&state, 1, 0) > 0 && (state.revents & (POLLHUP | POLLERR | POLLNVAL));
    return count == 0 && gone ? -1 : count;
}

std::int64_t SerialPort::Read(std::string& text) {
    constexpr int polls = 300;
    constexpr std::uint32_t noneMs = 15, growingMs = 1;
    int last = 0;
    for (int k = 0; k < polls; ++k) {
        const int count = InputCount();
        if (count < 0) return -1;
        if (count > 0 && count == last) break;
        last = count;
        SleepMs(count == 0 ? noneMs : growingMs);
    }
    if (last == 0) return 0;
    std::array<char, mostBytes> piece;
    std::size_t size = 0;
    const Stopwatch watch;
    do {
        const auto got = read(Handle(m_port), piece.data() + size, piece.size() - size);
        if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (got < 0 && size == 0) return -1;
        if (got <= 0) break;
        size += static_cast<std::size_t>(got);
    } while (size < piece.size() && WaitForMore(watch.ElapsedMs()));
    text.append(piece.data(), size);
    return static_cast<std::int64_t>(size);
}

bool SerialPort::WaitForMore(double elapsedMs) const {
    if (m_readIntervalMs == std::numeric_limits<std::uint32_t>::max()) return false;
    double waitMs = m_readIntervalMs;
    if (m_readTotalMs > 0) waitMs = std::min(waitMs > 0 ? waitMs : m_readTotalMs, m_readTotalMs - elapsedMs);
    pollfd state{Handle(m_port), POLLIN, 0};
    return waitMs > 0 && poll(&state, 1, static_cast<int>(std::min(std::ceil(waitMs), 1e9))) > 0 &&
           (state.revents & POLLIN);
}

bool SerialPort::Write(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const char*>(data);
    const double own = m_writeConstantMs + static_cast<double>(m_writeMultiplierMs) * static_cast<double>(size);
    const double limitMs = own > 0 ? own : m_timeoutMs;
    const Stopwatch watch;
    while (size > 0) {
        const double leftMs = limitMs - watch.ElapsedMs();
        pollfd ready{Handle(m_port), POLLOUT, 0};
        const int count = leftMs < 0 ? 0 : poll(&ready, 1, static_cast<int>(std::min(leftMs, 1e9)));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        const auto written = write(Handle(m_port), bytes, size);
        if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (written <= 0) return false;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return IsOpen();
}

bool SerialPort::SetTimeouts(std::uint32_t readInterval, std::uint32_t readConstant, std::uint32_t readMultiplier,
                             std::uint32_t writeConstant, std::uint32_t writeMultiplier) {
    m_readIntervalMs = readInterval;
    m_readTotalMs = readConstant + static_cast<double>(readMultiplier) * mostBytes;
    m_writeConstantMs = writeConstant;
    m_writeMultiplierMs = writeMultiplier;
    return IsOpen();
}

bool SerialPort::PurgeComm() {
    return tcflush(Handle(m_port), TCIOFLUSH) == 0;
}

void SerialPort::Close() {
    if (IsOpen()) close(Handle(std::exchange(m_port, -1)));
}

}  // namespace OSAL
