// Serial ports.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace OSAL {

struct SerialOptions {
    std::uint32_t baud = 115200;  // one of the system's own rates
    std::uint32_t timeoutMs = 1000;
};

/// Eight bits, no parity, one stop bit, bytes as they are. Thread: one at a time.
class SerialPort {
public:
    SerialPort() = default;
    ~SerialPort() { Close(); }
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    /// 0 or the system's error number.
    int Open(const std::string& device, const SerialOptions& options = {});
    /// Waits until input has come and grows no more, 4.5 seconds at most, then for more as the time-outs of a read
    /// say, and adds up to 1024 bytes to `text`.
    /// @return bytes added; 0 when nothing came; -1 when the port is gone
    std::int64_t Read(std::string& text);
    /// True only when all bytes went within the time-out.
    bool Write(const void* data, std::size_t size);
    /// In milliseconds. Of a read that input has come for: the longest pause behind a byte, and the longest time in
    /// all, a constant and so much for each of the 1024 bytes; 0 sets no bound, and with all 0, or the largest number
    /// as the pause, it takes what has come. Of a write: a constant and so much for each byte; both 0 leave the
    /// time-out of `Open`.
    bool SetTimeouts(std::uint32_t readInterval, std::uint32_t readConstant, std::uint32_t readMultiplier,
                     std::uint32_t writeConstant, std::uint32_t writeMultiplier);
    /// Drops what came and what waits to go.
    bool PurgeComm();
    void Close();
    bool IsOpen() const { return m_port >= 0; }

private:
    /// Bytes that wait; -1 when the port is gone.
    int InputCount() const;
    /// Waits for input behind what a read has. False when its time is over.
    bool WaitForMore(double elapsedMs) const;

    std::intptr_t m_port = -1;
    std::uint32_t m_timeoutMs = 0;
    std::uint32_t m_readIntervalMs = 0;
    double m_readTotalMs = 0;  // 0: no bound
    std::uint32_t m_writeConstantMs = 0;
    std::uint32_t m_writeMultiplierMs = 0;
};

}  // namespace OSAL
