// HTTP and WebSocket on a station: the page, the requests, the stream.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "OSAL/Outcome.h"
#include "Session.h"

namespace TarnServe {

struct ServerOptions {
    TarnSession::Options session;
    std::string address = "127.0.0.1";  ///< a numeric address; other than loopback needs a token
    std::uint16_t port = 8731;          ///< 0: one that is free
    std::string token;
    std::filesystem::path dataFolder;
};

/// Thread: made, run and destroyed by one thread; Stop from any.
class Server {
public:
    /// Binds the address, then opens the session.
    static OSAL::Outcome<std::unique_ptr<Server>> Open(const ServerOptions& options);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// "http://127.0.0.1:8731/"
    std::string Address() const;
    /// Serves until Stop: then the running line ends or is given up, the state is saved and the clients are told.
    void Run();
    void Stop();
    /// A line was given up and runs on: the process has to end by std::_Exit(). For when Run returned.
    bool HasAbandoned() const;

private:
    class Impl;
    explicit Server(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

}  // namespace TarnServe
