#include "Connections.h"

namespace TarnServe {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t longestHeader = 16384;
/// Long enough to read a line that is too long to its end and say so.
constexpr std::uint64_t longestBody = std::uint64_t{4} << 20;
constexpr std::uint64_t longestFile = std::uint64_t{128} << 20;
constexpr auto patience = 30s;

/// Nothing of the page comes from elsewhere, nobody frames it, and no type is guessed.
constexpr const char* contentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src 'self'; "
    "worker-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";

std::string_view View(boost::beast::string_view text) {
    return {text.data(), text.size()};
}

RequestOrigin OriginOf(const http::request<http::string_body>& request) {
    RequestOrigin origin;
    origin.host = View(request[http::field::host]);
    origin.origin = View(request[http::field::origin]);
    origin.fetchSite = View(request["Sec-Fetch-Site"]);
    origin.authorization = View(request[http::field::authorization]);
    origin.cookie = View(request[http::field::cookie]);
    const std::string_view target = View(request.target());
    if (const std::size_t mark = target.find('?'); mark != std::string_view::npos)
        origin.query = target.substr(mark + 1);
    return origin;
}

std::string PathOf(const http::request<http::string_body>& request) {
    const std::string_view target = View(request.target());
    return std::string(target.substr(0, target.find('?')));
}

}  // namespace

HttpConnection::HttpConnection(asio::ip::tcp::socket socket, Desk& desk) : m_stream(std::move(socket)), m_desk(desk) {
    ++m_desk.connections;
}

HttpConnection::~HttpConnection() {
    EndUpload();
    --m_desk.connections;
}

void HttpConnection::EndUpload() {
    if (std::exchange(m_isUploading, false)) --m_desk.uploads;
}

void HttpConnection::Start() {
    beast::error_code ignored;
    m_stream.socket().set_option(asio::ip::tcp::no_delay(true), ignored);
    if (m_desk.connections > Desk::mostConnections) return Refuse(503, "too many connections");
    ReadHeader();
}

void HttpConnection::ReadHeader() {
    m_isHead = false;
    m_parser.emplace();
    m_parser->header_limit(longestHeader);
    m_parser->body_limit(longestFile);
    m_stream.expires_after(patience);
    http::async_read_header(m_stream, m_buffer, *m_parser,
                            [self = shared_from_this()](beast::error_code error, std::size_t) {
                                if (error == http::error::header_limit)
                                    return self->Refuse(431, "the header is too long");
                                if (error == http::error::body_limit) return self->Refuse(413, "the body is too long");
                                if (!error) self->TakeHeader();
                            });
}

void HttpConnection::TakeHeader() {
    const auto& request = m_parser->get();
    m_isHead = request.method() == http::verb::head;
    const std::string path = PathOf(request);
    switch (m_desk.guard->Check(OriginOf(request))) {
        case Admission::Fine:
            break;
        case Admission::WrongHost:
            return Refuse(421, "the request is for another host");
        case Admission::WrongOrigin:
            return Refuse(403, "the request comes from another page");
        case Admission::NoToken:
            return Refuse(401, "the token is missing or wrong");
    }
    const std::uint64_t limit = Api::TakesFile(path) ? longestFile : longestBody;
    if (m_parser->content_length() && *m_parser->content_length() > limit) return Refuse(413, "the body is too long");
    m_parser->body_limit(limit);
    if (limit == longestFile && m_parser->content_length().value_or(limit) > longestBody) {
        if (m_desk.uploads >= Desk::mostUploads) return Refuse(503, "too many files are on their way already");
        m_isUploading = true;
        ++m_desk.uploads;
    }
    ReadBody();
}

void HttpConnection::ReadBody() {
    m_stream.expires_after(patience);
    http::async_read(m_stream, m_buffer, *m_parser, [self = shared_from_this()](beast::error_code error, std::size_t) {
        if (error == http::error::body_limit) return self->Refuse(413, "the body is too long");
        if (!error) self->TakeRequest();
    });
}

void HttpConnection::TakeRequest() {
    HttpRequest request = m_parser->release();
    const std::string path = PathOf(request);
    const RequestOrigin origin = OriginOf(request);
    if (websocket::is_upgrade(request)) {
        if (path != "/api/stream") return Refuse(404, "the stream is at /api/stream");
        if (m_desk.streams.size() >= Desk::mostStreams) return Refuse(503, "too many streams");
        m_stream.expires_never();
        std::make_shared<StreamConnection>(m_stream.release_socket(), m_desk)->Accept(request);
        return;
    }
    const bool keepAlive = request.keep_alive();
    if (path == "/" && m_desk.guard->IsTokenInQuery(origin.query)) {
        // the token leaves the address, where it would be seen and kept in the history
        return Send({303, "text/plain", "", {{"Location", "/"}, {"Set-Cookie", m_desk.guard->Cookie()}}}, keepAlive);
    }
    if (path == "/api/stream") return Refuse(426, "the stream is a WebSocket");
    const ApiRequest api{m_isHead ? "GET" : std::string(View(request.method_string())), path,
                         std::string(View(request[http::field::content_type])), std::move(request.body())};
    m_stream.expires_never();  // a line may take its time
    m_desk.api->Handle(api, [self = shared_from_this(), keepAlive](ApiResponse response) {
        self->Send(std::move(response), keepAlive);
    });
}

void HttpConnection::Refuse(unsigned status, const std::string& reason) {
    Send(ErrorResponse(status, reason), false);
}

void HttpConnection::Send(ApiResponse response, bool keepAlive) {
    EndUpload();
    m_response.emplace();
    m_response->result(response.status);
    m_response->set(http::field::content_type, response.type);
    m_response->set(http::field::cache_control, "no-store");
    m_response->set("Content-Security-Policy", contentPolicy);
    m_response->set("X-Content-Type-Options", "nosniff");
    m_response->set("Referrer-Policy", "no-referrer");
    m_response->set("Cross-Origin-Resource-Policy", "same-origin");
    m_response->set("X-Frame-Options", "DENY");
    for (const auto& [name, value] : response.headers)
        m_response->set(name, value);
    m_response->body() = std::move(response.body);
    const bool goesOn = keepAlive && !m_desk.isEnding;
    m_response->keep_alive(goesOn);
    m_response->prepare_payload();
    if (m_isHead) m_response->body().clear();  // its length stays told
    m_stream.expires_after(patience);
    ++m_desk.answers;
    http::async_write(m_stream, *m_response, [self = shared_from_this(), goesOn](beast::error_code error, std::size_t) {
        --self->m_desk.answers;
        if (error) return;
        if (goesOn) return self->ReadHeader();
        beast::error_code ignored;
        self->m_stream.socket().shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    });
}

}  // namespace TarnServe
