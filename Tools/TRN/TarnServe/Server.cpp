#include "Server.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/host_name.hpp>
#include <boost/asio/steady_timer.hpp>

#include "Connections.h"

namespace TarnServe {

class Server::Impl final : public ILoop {
public:
    Impl() = default;
    ~Impl() override { m_desk.streams.clear(); }  // before the loop that their sockets belong to
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    OSAL::Outcome<> Open(const ServerOptions& options);
    std::string Address() const;
    void Run();
    void Stop();
    bool HasAbandoned() const { return m_station->HasAbandoned(); }

    void Post(std::function<void()> work) override { asio::post(m_io, std::move(work)); }
    void After(std::chrono::milliseconds delay, std::function<void()> work) override;

private:
    OSAL::Outcome<> Bind(const ServerOptions& options);
    void Accept();
    void End();
    void Leave(Clock::time_point latest);

    static constexpr auto patience = std::chrono::seconds(5);

    Desk m_desk;  // connections look at it to their end, which comes with the loop's
    asio::io_context m_io{1};
    /// Until the end is over: a line that runs on the plug-in's thread is no work that the loop knows of.
    asio::executor_work_guard<asio::io_context::executor_type> m_work{m_io.get_executor()};
    asio::ip::tcp::acceptor m_acceptor{m_io};
    std::optional<Guard> m_guard;
    std::unique_ptr<Station> m_station;
    std::optional<Api> m_api;
};

OSAL::Outcome<> Server::Impl::Bind(const ServerOptions& options) {
    beast::error_code error;
    const std::string text = options.address == "localhost" ? "127.0.0.1" : options.address;
    const auto address = asio::ip::make_address(text, error);
    if (error) return OSAL::Refusal{"'" + options.address + "' isn't a numeric address"};
    if (!address.is_loopback() && options.token.empty())
        return OSAL::Refusal{"on an address that others reach, the server needs a --token"};
    if (!IsTokenText(options.token))
        return OSAL::Refusal{"the token may hold letters, digits and any of -._~+/=, 256 of them at the most"};
    const asio::ip::tcp::endpoint endpoint(address, options.port);
    m_acceptor.open(endpoint.protocol(), error);
    if (!error) m_acceptor.set_option(asio::socket_base::reuse_address(true), error);
    if (!error) m_acceptor.bind(endpoint, error);
    if (!error) m_acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (error)
        return OSAL::Refusal{"can't listen on " + options.address + ", port " + std::to_string(options.port) + ": " +
                             error.message()};
    const std::uint16_t port = m_acceptor.local_endpoint().port();
    m_guard.emplace(address.to_string(), port, options.token, asio::ip::host_name(error));
    return {};
}

OSAL::Outcome<> Server::Impl::Open(const ServerOptions& options) {
    const auto bound = Bind(options);
    if (!bound) return bound;
    auto station = Station::Open({options.session, options.dataFolder}, *this, m_desk);
    if (!station) return station.Why();
    m_station = std::move(*station);
    m_api.emplace(*m_station, m_desk);
    m_desk.guard = &*m_guard;
    m_desk.station = m_station.get();
    m_desk.api = &*m_api;
    Accept();
    return {};
}

std::string Server::Impl::Address() const {
    const auto endpoint = m_acceptor.local_endpoint();
    const std::string address = endpoint.address().to_string();
    return "http://" + (endpoint.address().is_v6() ? "[" + address + "]" : address) + ":" +
           std::to_string(endpoint.port()) + "/";
}

void Server::Impl::Accept() {
    m_acceptor.async_accept([this](beast::error_code error, asio::ip::tcp::socket socket) {
        if (error == asio::error::operation_aborted || m_desk.isEnding) return;
        if (!error) std::make_shared<HttpConnection>(std::move(socket), m_desk)->Start();
        if (!error) return Accept();
        // out of descriptors, most likely: others close theirs in a while
        After(std::chrono::milliseconds(100), [this] { Accept(); });
    });
}

void Server::Impl::After(std::chrono::milliseconds delay, std::function<void()> work) {
    auto timer = std::make_shared<asio::steady_timer>(m_io, delay);
    timer->async_wait([timer, work = std::move(work)](beast::error_code error) {
        if (!error) work();
    });
}

void Server::Impl::Run() {
    m_io.run();
}

void Server::Impl::Stop() {
    Post([this] { End(); });
}

void Server::Impl::End() {
    if (m_desk.isEnding) return;
    m_desk.isEnding = true;
    beast::error_code ignored;
    m_acceptor.close(ignored);
    m_station->End([this] {
        for (const auto& stream : std::set(m_desk.streams))
            stream->Close();
        Leave(Clock::now() + patience);
    });
}

/// Ends the loop once everybody got what waits for them; a client that doesn't read or doesn't answer the goodbye is
/// waited for until `latest`.
void Server::Impl::Leave(Clock::time_point latest) {
    if (m_desk.IsDone() || Clock::now() >= latest) return m_io.stop();
    After(std::chrono::milliseconds(10), [this, latest] { Leave(latest); });
}

Server::Server(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
Server::~Server() = default;

OSAL::Outcome<std::unique_ptr<Server>> Server::Open(const ServerOptions& options) {
    auto impl = std::make_unique<Impl>();
    const auto opened = impl->Open(options);
    if (!opened) return opened.Why();
    return std::unique_ptr<Server>(new Server(std::move(impl)));
}

std::string Server::Address() const {
    return m_impl->Address();
}

void Server::Run() {
    m_impl->Run();
}

void Server::Stop() {
    m_impl->Stop();
}

bool Server::HasAbandoned() const {
    return m_impl->HasAbandoned();
}

}  // namespace TarnServe
