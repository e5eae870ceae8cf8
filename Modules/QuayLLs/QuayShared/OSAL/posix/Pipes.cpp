// Named pipes as local sockets in a folder that belongs to the user alone. The server holds a lock file, so that the
// name of a killed server can be taken at once.
#include "OSAL/Pipes.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "OSAL/Time.h"
#include "OSAL/posix/Descriptor.h"

namespace OSAL {

namespace {

constexpr int bufferBytes = 4096;
constexpr std::uint32_t serverStepMs = 5;

/// Empty when the folder can't be had or belongs to another.
std::string PipePath(const std::string& name) {
    std::error_code error;
    const auto folder = std::filesystem::temp_directory_path(error) / ("tarn-pipes-" + std::to_string(geteuid()));
    mkdir(folder.c_str(), 0700);
    struct stat status;
    if (lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid()) return {};
    std::string file = name;
    std::replace_if(
        file.begin(), file.end(), [](char c) { return c == '/' || c == '\\'; }, '.');
    return (folder / ("pipe-" + file)).string();
}

bool AddressOf(const std::string& path, sockaddr_un& address) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path || path.find('\0') != std::string::npos) return false;
    std::memcpy(address.sun_path, path.data(), path.size());
    return true;
}

Descriptor NewSocket() {
    Descriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    for (const int buffer : {SO_SNDBUF, SO_RCVBUF})
        setsockopt(made.Get(), SOL_SOCKET, buffer, &bufferBytes, sizeof bufferBytes);
    return made;
}

/// A server is there as long as it holds its lock.
bool IsServed(const std::string& path) {
    const Descriptor lock(open((path + ".lock").c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    return lock && flock(lock.Get(), LOCK_SH | LOCK_NB) != 0;
}

}  // namespace

int NamedPipe::Create(const std::string& name) {
    Close();
    const std::string path = PipePath(name);
    sockaddr_un address;
    if (!AddressOf(path, address)) return path.empty() ? EACCES : ENAMETOOLONG;
    Descriptor lock(open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!lock || flock(lock.Get(), LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK ? EBUSY : errno;
    unlink(path.c_str());
    Descriptor server = NewSocket();
    if (!server || bind(server.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(server.Get(), 0) != 0)
        return errno;
    m_path = path;
    m_lock = lock.Release();
    m_server = server.Release();
    return 0;
}

int NamedPipe::Connect() {
    Disconnect();
    int client;
    do {
        client = accept4(Handle(m_server), nullptr, nullptr, SOCK_CLOEXEC);
    } while (client < 0 && (errno == EINTR || errno == ECONNABORTED));
    if (client < 0) return errno;
    m_pipe = client;
    return 0;
}

int NamedPipe::Disconnect() {
    if (m_pipe < 0) return ENOTCONN;
    shutdown(Handle(m_pipe), SHUT_RDWR);
    return close(Handle(std::exchange(m_pipe, -1))) == 0 ? 0 : errno;
}

bool NamedPipe::Wait(const std::string& name, std::uint32_t timeoutMs) {
    const std::string path = PipePath(name);
    const Stopwatch watch;
    do {
        if (IsServed(path)) return true;
        SleepMs(std::min(serverStepMs, timeoutMs));
    } while (watch.ElapsedMs() < timeoutMs);
    return false;
}

int NamedPipe::Open(const std::string& name) {
    Close();
    sockaddr_un address;
    const std::string path = PipePath(name);
    if (!AddressOf(path, address)) return ENOENT;
    Descriptor client = NewSocket();
    m_pipe = client.Release();
    SetHandleState(false);  // a server that has a client gives an error at once
    constexpr int attempts = 20;
    for (int k = 0; connect(Handle(m_pipe), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0; ++k) {
        const int error = errno;
        const bool isStarting = (error == ENOENT || error == ECONNREFUSED) && IsServed(path);
        if (!isStarting || k == attempts) {
            Disconnect();
            return error == EAGAIN ? EBUSY : error;
        }
        SleepMs(serverStepMs);
    }
    return SetHandleState(true);
}

int NamedPipe::Peek(std::size_t& waiting) {
    int count = 0;
    waiting = 0;
    if (ioctl(Handle(m_pipe), FIONREAD, &count) != 0) return errno;
    waiting = static_cast<std::size_t>(count);
    return 0;
}

int NamedPipe::SetHandleState(bool waits) {
    int mode = waits ? 0 : 1;
    return ioctl(Handle(m_pipe), FIONBIO, &mode) == 0 ? 0 : errno;
}

int NamedPipe::Read(void* data, std::size_t size, std::size_t& got) {
    got = 0;
    ssize_t count;
    do {
        count = recv(Handle(m_pipe), data, size, 0);
    } while (count < 0 && errno == EINTR);
    if (count < 0) return errno;
    got = static_cast<std::size_t>(count);
    return 0;
}

int NamedPipe::Write(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const auto count = send(Handle(m_pipe), bytes, size, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return 0;
}

void NamedPipe::Close() {
    Disconnect();
    if (m_server >= 0) {
        unlink(m_path.c_str());
        close(Handle(std::exchange(m_server, -1)));
        close(Handle(std::exchange(m_lock, -1)));
    }
}

}  // namespace OSAL
