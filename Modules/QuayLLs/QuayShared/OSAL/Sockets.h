// IPv4 TCP sockets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace OSAL {

/// Every operation gives 0 or the system's error number, unless it says otherwise. Writing to a connection that the
/// other side closed is an error, never a signal.
/// Thread: `Send` and `Receive` may run at the same time on two threads.
class Socket {
public:
    Socket() = default;
    ~Socket() { Close(); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    /// Closes what is open first.
    int Create();
    /// @param address  in numbers: "127.0.0.1"
    int Connect(const std::string& address, std::uint16_t port);
    /// @param port  0 lets the system choose. @param address  of one interface; empty for all
    int Listen(std::uint16_t port, const std::string& address = {});
    /// @param blocking  waits for a client; else there is an error at once when none waits
    int Accept(Socket& client, bool blocking);
    /// Waits 1 ms at most. A readable socket gives whether bytes wait: false means that the other side ended. Nothing
    /// within that time gives true: there may be data yet.
    bool HasData();
    /// Adds what has arrived to `buffer`, waiting for the first byte; nothing added means that the other side ended.
    int Receive(std::string& buffer);
    /// A text of up to 779 characters, as `printf` forms it; a longer one is an error and nothing is sent.
    [[gnu::format(printf, 2, 3)]] int Send(const char* format, ...);
    int Send(std::size_t size, const void* data);
    void Close();

    bool IsOpen() const { return m_socket >= 0; }
    /// Port of this end; 0 when there is none.
    std::uint16_t Port() const;

private:
    std::intptr_t m_socket = -1;
};

}  // namespace OSAL
