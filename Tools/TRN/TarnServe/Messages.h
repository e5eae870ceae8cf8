// What goes over the stream: messages of the plug-in as they are, and the host's own, each with a number and a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace TarnServe {

/// Types of the host's own messages.
namespace HostType {
constexpr std::string_view State = "Host State";        ///< settings, adapter, what runs; after each change
constexpr std::string_view Frame = "Host Frame";        ///< ends the messages of one sweep: what it was measured with
constexpr std::string_view Line = "Host Line";          ///< a line was run, and its answer
constexpr std::string_view Progress = "Host Progress";  ///< of a scan
constexpr std::string_view Channels = "Host Channels";  ///< the power of all channels visited
constexpr std::string_view Desense = "Host Desense";    ///< phase and progress of the burn-in desense test
constexpr std::string_view Refusal = "Host Refusal";    ///< why an order was not followed
}  // namespace HostType

struct Message {
    std::string type;
    std::uint64_t seq = 0;
    std::string utc;
    std::string envelope;  ///< {"type": "...", "data": ...}

    /// What stands before the envelope's second byte on the wire.
    /// @param dropped  sweeps that the client didn't get; only a sweep's last message tells it
    std::string Head(std::uint64_t dropped) const;
};
using MessagePtr = std::shared_ptr<const Message>;

/// The messages of one sweep; the last one is HostType::Frame.
using Frame = std::vector<MessagePtr>;
using FramePtr = std::shared_ptr<const Frame>;

/// Type of an envelope of the plug-in; empty when it hasn't the form of one.
std::string_view TypeOf(std::string_view envelope);
/// Data of an envelope of the plug-in.
std::string_view DataOf(std::string_view envelope);

/// An envelope out of a JSON text.
std::string Envelope(std::string_view type, std::string_view data);

/// The envelope when it is JSON, with null for a level that is no number. Else one of the same type with "text": what
/// the plug-in said, as a JSON string. Texts that the plug-in copies unescaped can break its JSON; a reader of the
/// stream never sees that.
std::string AsJson(std::string envelope);

/// True for the types that each sweep brings anew, so that only the newest ones count.
bool IsOfSweep(std::string_view type);

/// "2026-01-31T14:03:22.123Z"
std::string UtcText(std::chrono::system_clock::time_point time);
std::string UtcText(std::filesystem::file_time_type time);

}  // namespace TarnServe
