// Named pipes: one server, one client at a time, both ways.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace OSAL {

/// An end of the pipe "\\.\pipe\<name>" of this user. Every operation gives 0 or the system's error number, unless it
/// says otherwise. Thread: `Read` and `Write` may run at the same time on two threads.
class NamedPipe {
public:
    NamedPipe() = default;
    ~NamedPipe() { Close(); }
    NamedPipe(const NamedPipe&) = delete;
    NamedPipe& operator=(const NamedPipe&) = delete;

    /// Makes the server's end; an error when the name has a server.
    int Create(const std::string& name);
    /// Server: waits for a client.
    int Connect();
    /// Server: sends the client away; the next `Connect` takes another.
    int Disconnect();
    /// Whether there is a server with room for a client, waiting up to that time for one.
    static bool Wait(const std::string& name, std::uint32_t timeoutMs);
    /// Makes a client's end; an error at once when there is no server or another client waits for it.
    int Open(const std::string& name);
    /// Bytes that wait to be read.
    int Peek(std::size_t& waiting);
    /// @param waits  false makes `Read` and `Write` give EAGAIN instead of waiting
    int SetHandleState(bool waits);
    /// @return 0 with no bytes got: the other end was closed
    int Read(void* data, std::size_t size, std::size_t& got);
    /// All bytes or an error.
    int Write(const void* data, std::size_t size);
    void Close();

private:
    std::intptr_t m_server = -1;
    std::intptr_t m_lock = -1;
    std::intptr_t m_pipe = -1;
    std::string m_path;
};

}  // namespace OSAL
