// One client's connection: requests one after the other, or the stream.
#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "Api.h"
#include "Guard.h"
#include "Outbox.h"

namespace TarnServe {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using HttpRequest = http::request<http::string_body>;

class StreamConnection;

/// What the connections share. Thread: the loop's.
struct Desk final : IAudience {
    const Guard* guard = nullptr;
    Api* api = nullptr;
    Station* station = nullptr;
    std::set<std::shared_ptr<StreamConnection>> streams;
    FramePtr lastFrame;  ///< for those who come while nothing is swept
    std::size_t connections = 0;
    std::size_t answers = 0;  ///< that are being written
    std::size_t uploads = 0;  ///< long files that are being read, each whole in memory
    bool isEnding = false;

    void Tell(const MessagePtr& message) override;
    void Show(const FramePtr& frame) override;
    bool IsWatching() const override;
    std::size_t Clients() const override { return streams.size(); }
    /// Everything is written and everybody is gone.
    bool IsDone() const { return streams.empty() && answers == 0; }

    static constexpr std::size_t mostConnections = 128;
    static constexpr std::size_t mostStreams = 32;
    static constexpr std::size_t mostUploads = 4;
};

/// Answers requests until the client goes, asks for the stream, or the server ends.
class HttpConnection : public std::enable_shared_from_this<HttpConnection> {
public:
    HttpConnection(asio::ip::tcp::socket socket, Desk& desk);
    ~HttpConnection();
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;
    void Start();

private:
    void ReadHeader();
    void TakeHeader();
    void ReadBody();
    void TakeRequest();
    void Send(ApiResponse response, bool keepAlive);
    void Refuse(unsigned status, const std::string& reason);
    void EndUpload();

    beast::tcp_stream m_stream;
    Desk& m_desk;
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::string_body>> m_parser;
    std::optional<http::response<http::string_body>> m_response;
    bool m_isUploading = false;
    bool m_isHead = false;  ///< the request wants what GET would tell, without the body
};

/// Sends what its client subscribed to, at the client's own pace.
class StreamConnection : public std::enable_shared_from_this<StreamConnection> {
public:
    StreamConnection(asio::ip::tcp::socket socket, Desk& desk) : m_socket(std::move(socket)), m_desk(desk) {}
    void Accept(const HttpRequest& request);
    void Push(const MessagePtr& message);
    void PushFrame(const FramePtr& frame);
    bool IsWatching() const;
    /// Says goodbye once what waits is sent.
    void Close();

private:
    void Read();
    void Take(const std::string& text);
    void Write();
    void SayGoodbye();
    void CutOff();

    websocket::stream<beast::tcp_stream> m_socket;
    Desk& m_desk;
    beast::flat_buffer m_buffer;
    Outbox m_outbox;  ///< refusals go to everybody, also before they subscribe
    std::optional<Outgoing> m_sending;
    std::string m_head;
    bool m_isOpen = false;
    bool m_isGreeted = false;
    bool m_isClosing = false;
};

}  // namespace TarnServe
