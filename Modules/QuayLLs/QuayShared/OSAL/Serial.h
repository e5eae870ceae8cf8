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
    /// Waits until input has come and grows no more, 4.5 seconds at most, and adds up to 1024 bytes of it to `text`.
    /// @return bytes added; 0 when nothing came; -1 when the port is gone
    std::int64_t Read(std::string& text);
    /// True only when all bytes went within the time-out.
    bool Write(const void* data, std::size_t size);
    /// Of a write: a constant and so much for each byte, in milliseconds; both 0 leave the time-out of `Open`. Those
    /// of a read are kept for other systems: here a read takes what has come and waits for nothing.
    bool SetTimeouts(std::uint32_t readInterval, std::uint32_t readConstant, std::uint32_t readMultiplier,
                     std::uint32_t writeConstant, std::uint32_t writeMultiplier);
    /// Drops what came and what waits to go.
    bool PurgeComm();
    void Close();
    bool IsOpen() const { return m_port >= 0; }

private:
    /// Bytes that wait; -1 when the port is gone.
    int InputCount() const;

    std::intptr_t m_port = -1;
    std::uint32_t m_timeoutMs = 0;
    std::uint32_t m_writeConstantMs = 0;
    std::uint32_t m_writeMultiplierMs = 0;
};

}  // namespace OSAL
