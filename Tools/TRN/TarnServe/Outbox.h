// What waits to be sent to one client. A client that doesn't keep up loses sweeps, never anything else, and never holds
// back the others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>

#include "Messages.h"

namespace TarnServe {

struct Subscription {
    std::set<std::string, std::less<>> types{std::string(HostType::Refusal)};  ///< of which nobody is spared
    bool isAll = false;
    /// The client says when it has drawn a sweep, and gets the next one then.
    bool acknowledges = false;

    bool Wants(std::string_view type) const { return isAll || types.contains(type); }
};

struct Outgoing {
    MessagePtr message;
    std::uint64_t dropped = 0;  ///< sweeps that this client didn't get so far
};

struct OutboxLimits {
    std::size_t messages = 512;
    std::size_t bytes = std::size_t{16} << 20;
    /// Sweeps that an acknowledging client may have unacknowledged.
    std::size_t sweepsAhead = 2;
};

/// Thread: one at a time.
class Outbox {
public:
    explicit Outbox(OutboxLimits limits = {}) : m_limits(limits) {}

    void Subscribe(Subscription subscription) { m_subscription = std::move(subscription); }
    const Subscription& Wishes() const { return m_subscription; }

    /// A message that must not be lost. @return false when too much waits already: the client is to be cut off
    bool Push(const MessagePtr& message);
    /// A sweep. It takes the place of one that still waits.
    void PushFrame(const FramePtr& frame);
    /// The client has drawn the sweep whose last message has this number, and all before it.
    void Acknowledge(std::uint64_t seq);
    /// What to send next, once what was taken before is sent; nothing when there is nothing or the client must
    /// acknowledge first.
    std::optional<Outgoing> Next();

    std::uint64_t Dropped() const { return m_dropped; }

private:
    bool BeginFrame();

    OutboxLimits m_limits;
    Subscription m_subscription;
    std::deque<MessagePtr> m_messages;
    std::size_t m_bytes = 0;  ///< of m_messages
    FramePtr m_waiting;
    std::deque<MessagePtr> m_frame;              ///< rest of the sweep that is being sent
    std::deque<std::uint64_t> m_unacknowledged;  ///< last numbers of sweeps
    std::uint64_t m_dropped = 0;
};

}  // namespace TarnServe
