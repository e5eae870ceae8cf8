#include "Outbox.h"

namespace TarnServe {

bool Outbox::Push(const MessagePtr& message) {
    if (!m_subscription.Wants(message->type)) return true;
    if (m_messages.size() >= m_limits.messages || m_bytes + message->envelope.size() > m_limits.bytes) return false;
    m_bytes += message->envelope.size();
    m_messages.push_back(message);
    return true;
}

void Outbox::PushFrame(const FramePtr& frame) {
    if (m_waiting) ++m_dropped;
    m_waiting = frame;
}

void Outbox::Acknowledge(std::uint64_t seq) {
    while (!m_unacknowledged.empty() && m_unacknowledged.front() <= seq)
        m_unacknowledged.pop_front();
}

bool Outbox::BeginFrame() {
    if (!m_waiting || (m_subscription.acknowledges && m_unacknowledged.size() >= m_limits.sweepsAhead)) return false;
    for (const MessagePtr& message : *m_waiting)
        if (m_subscription.Wants(message->type)) m_frame.push_back(message);
    if (m_subscription.acknowledges && !m_frame.empty()) m_unacknowledged.push_back(m_waiting->back()->seq);
    m_waiting.reset();
    return !m_frame.empty();
}

std::optional<Outgoing> Outbox::Next() {
    // a sweep's messages stay together; the others go between two sweeps
    if (m_frame.empty() && !m_messages.empty()) {
        Outgoing next{m_messages.front(), m_dropped};
        m_messages.pop_front();
        m_bytes -= next.message->envelope.size();
        return next;
    }
    if (m_frame.empty() && !BeginFrame()) return std::nullopt;
    Outgoing next{m_frame.front(), m_dropped};
    m_frame.pop_front();
    return next;
}

}  // namespace TarnServe
