#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "Connections.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;

constexpr std::size_t longestOrder = 65536;
/// A sweep goes out in few large writes.
constexpr std::size_t writeBuffer = std::size_t{256} << 10;

}  // namespace

void Desk::Tell(const MessagePtr& message) {
    for (const auto& stream : std::set(streams))
        stream->Push(message);
}

void Desk::Show(const FramePtr& frame) {
    lastFrame = frame;
    for (const auto& stream : std::set(streams))
        stream->PushFrame(frame);
}

bool Desk::IsWatching() const {
    for (const auto& stream : streams)
        if (stream->IsWatching()) return true;
    return false;
}

void StreamConnection::Accept(const HttpRequest& request) {
    auto timeout = websocket::stream_base::timeout::suggested(beast::role_type::server);
    timeout.idle_timeout = std::chrono::seconds(30);
    timeout.keep_alive_pings = true;  // a client that is gone without a word is found out
    m_socket.set_option(timeout);
    m_socket.write_buffer_bytes(writeBuffer);
    m_socket.auto_fragment(false);
    m_socket.read_message_max(longestOrder);
    m_socket.async_accept(request, [self = shared_from_this()](beast::error_code error) {
        if (error) return;
        self->m_isOpen = true;
        self->m_socket.text(true);
        self->m_desk.streams.insert(self);
        self->Read();
    });
}

void StreamConnection::Read() {
    m_socket.async_read(m_buffer, [self = shared_from_this()](beast::error_code error, std::size_t) {
        if (error) return self->CutOff();
        self->Take(beast::buffers_to_string(self->m_buffer.data()));
        self->m_buffer.consume(self->m_buffer.size());
        self->Read();
    });
}

/// {"subscribe": ["Spectrum Data", ...]} or {"subscribe": "*"}, with "acknowledge": true where sweeps come one by one;
/// {"drawn": 123}.
void StreamConnection::Take(const std::string& text) {
    const Json order = Json::parse(text, nullptr, false);
    const auto refuse = [&](const char* reason) {
        const std::string data = Json({{"text", reason}}).dump();
        auto message = std::make_shared<Message>();
        message->type = HostType::Refusal;
        message->utc = UtcText(std::chrono::system_clock::now());
        message->envelope = Envelope(HostType::Refusal, data);
        m_outbox.Push(message);
        Write();
    };
    if (!order.is_object()) return refuse("an order is a JSON object with \"subscribe\" or \"drawn\"");
    if (const auto drawn = order.find("drawn"); drawn != order.end() && drawn->is_number_unsigned()) {
        m_outbox.Acknowledge(drawn->get<std::uint64_t>());
        return Write();
    }
    const auto wanted = order.find("subscribe");
    if (wanted == order.end()) return refuse("an order is a JSON object with \"subscribe\" or \"drawn\"");
    Subscription subscription;
    subscription.isAll = *wanted == "*";
    if (!subscription.isAll && !wanted->is_array()) return refuse("\"subscribe\" is a list of types, or \"*\"");
    if (wanted->is_array())
        for (const Json& type : *wanted)
            if (type.is_string()) subscription.types.insert(type.get<std::string>());
    const Json acknowledge = order.value("acknowledge", Json(false));
    subscription.acknowledges = acknowledge.is_boolean() && acknowledge.get<bool>();
    m_outbox.Subscribe(std::move(subscription));
    if (!std::exchange(m_isGreeted, true))
        for (const MessagePtr& message : m_desk.station->Greeting())
            m_outbox.Push(message);
    if (m_desk.lastFrame && !m_desk.station->IsSweeping()) m_outbox.PushFrame(m_desk.lastFrame);
    Write();
    m_desk.station->AudienceChanged();
}

void StreamConnection::Push(const MessagePtr& message) {
    if (!m_outbox.Push(message)) return CutOff();  // it reads nothing: the others must not wait for it
    Write();
}

void StreamConnection::PushFrame(const FramePtr& frame) {
    m_outbox.PushFrame(frame);
    Write();
}

bool StreamConnection::IsWatching() const {
    const Subscription& wishes = m_outbox.Wishes();
    return m_isOpen && (wishes.isAll || std::ranges::any_of(wishes.types, IsOfSweep));
}

void StreamConnection::Write() {
    if (!m_isOpen || m_sending) return;
    m_sending = m_outbox.Next();
    if (!m_sending) return m_isClosing ? SayGoodbye() : void();
    const std::string& envelope = m_sending->message->envelope;
    m_head = m_sending->message->Head(m_sending->dropped);
    const std::array<asio::const_buffer, 2> parts = {asio::buffer(m_head),
                                                     asio::buffer(envelope.data() + 1, envelope.size() - 1)};
    m_socket.async_write(parts, [self = shared_from_this()](beast::error_code error, std::size_t) {
        self->m_sending.reset();
        if (error) return self->CutOff();
        self->Write();
    });
}

void StreamConnection::Close() {
    m_isClosing = true;
    Write();
}

void StreamConnection::SayGoodbye() {
    m_isOpen = false;
    m_socket.async_close(websocket::close_code::going_away,
                         [self = shared_from_this()](beast::error_code) { self->m_desk.streams.erase(self); });
}

void StreamConnection::CutOff() {
    if (!m_isOpen) return;
    m_isOpen = false;
    beast::get_lowest_layer(m_socket).close();
    m_desk.streams.erase(shared_from_this());
    if (!m_desk.isEnding) m_desk.station->AudienceChanged();
}

}  // namespace TarnServe
