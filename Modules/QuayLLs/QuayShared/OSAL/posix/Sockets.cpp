#include "OSAL/Sockets.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include "OSAL/posix/Descriptor.h"

namespace OSAL {

namespace {

constexpr std::size_t pieceBytes = 8192, formattedBytes = 780;

/// 0 or the error of a call that gives -1.
template <typename Answer>
int ErrorOf(Answer answer) {
    return answer < 0 ? errno : 0;
}

int AddressOf(const std::string& address, std::uint16_t port, sockaddr_in& out) {
    out = {};
    out.sin_family = AF_INET;
    out.sin_port = htons(port);
    return inet_pton(AF_INET, address.c_str(), &out.sin_addr) == 1 ? 0 : EINVAL;
}

int WaitingBytes(std::intptr_t socket) {
    int count = 0;
    return ioctl(Handle(socket), FIONREAD, &count) == 0 ? count : 0;
}

/// Ends an attempt to connect that a signal interrupted and that goes on all the same.
int ConnectedLater(int socket) {
    pollfd ready{socket, POLLOUT, 0};
    while (poll(&ready, 1, -1) < 0)
        if (errno != EINTR) return errno;
    int error = 0;
    socklen_t size = sizeof error;
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

}  // namespace

int Socket::Create() {
    Close();
    m_socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return ErrorOf(m_socket);
}

int Socket::Connect(const std::string& address, std::uint16_t port) {
    sockaddr_in peer;
    if (const int error = AddressOf(address, port, peer)) return error;
    if (!IsOpen())
        if (const int error = Create()) return error;
    const int error = ErrorOf(connect(Handle(m_socket), reinterpret_cast<const sockaddr*>(&peer), sizeof peer));
    return error == EINTR ? ConnectedLater(Handle(m_socket)) : error;
}

int Socket::Listen(std::uint16_t port, const std::string& address) {
    sockaddr_in own;
    if (const int error = AddressOf(address.empty() ? "0.0.0.0" : address, port, own)) return error;
    if (!IsOpen())
        if (const int error = Create()) return error;
    const int on = 1;  // a port in its last waiting state can be taken again
    setsockopt(Handle(m_socket), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (const int error = ErrorOf(bind(Handle(m_socket), reinterpret_cast<const sockaddr*>(&own), sizeof own)))
        return error;
    return ErrorOf(listen(Handle(m_socket), 0x7FFFFFFF));
}

int Socket::Accept(Socket& client, bool blocking) {
    int mode = blocking ? 0 : 1;
    if (const int error = ErrorOf(ioctl(Handle(m_socket), FIONBIO, &mode))) return error;
    int accepted;
    do {
        accepted = accept4(Handle(m_socket), nullptr, nullptr, SOCK_CLOEXEC);
    } while (accepted < 0 && (errno == EINTR || errno == ECONNABORTED));
    if (accepted < 0) return errno;
    client.Close();
    client.m_socket = accepted;
    const int on = 1;
    return ErrorOf(setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on));
}

bool Socket::HasData() {
    pollfd ready{Handle(m_socket), POLLIN, 0};
    const int count = poll(&ready, 1, 1);
    if (count == 0 || (count < 0 && errno == EINTR)) return true;
    return count > 0 && WaitingBytes(m_socket) > 0;
}

int Socket::Receive(std::string& buffer) {
    std::array<char, pieceBytes> piece;
    do {
        ssize_t got;
        do {
            got = recv(Handle(m_socket), piece.data(), piece.size(), 0);
        } while (got < 0 && errno == EINTR);
        if (got <= 0) return ErrorOf(got);
        buffer.append(piece.data(), static_cast<std::size_t>(got));
    } while (WaitingBytes(m_socket) > 0);
    return 0;
}

int Socket::Send(const char* format, ...) {
    std::array<char, formattedBytes> text;
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(text.data(), text.size(), format, values);
    va_end(values);
    if (length < 0) return EINVAL;
    const auto size = static_cast<std::size_t>(length);
    return size < text.size() ? Send(size, text.data()) : EMSGSIZE;
}

int Socket::Send(std::size_t size, const void* data) {
    const auto* bytes = static_cast<const char*>(data);
    for (std::size_t sent = 0; sent < size;) {
        const auto count = send(Handle(m_socket), bytes + sent, size - sent, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        sent += static_cast<std::size_t>(count);
    }
    return 0;
}

void Socket::Close() {
    if (!IsOpen()) return;
    shutdown(Handle(m_socket), SHUT_RDWR);
    close(Handle(std::exchange(m_socket, -1)));
}

std::uint16_t Socket::Port() const {
    sockaddr_in own{};
    socklen_t size = sizeof own;
    return getsockname(Handle(m_socket), reinterpret_cast<sockaddr*>(&own), &size) == 0 ? ntohs(own.sin_port) : 0;
}

}  // namespace OSAL
