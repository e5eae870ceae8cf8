// The publishing side of the trace channel: what runs, sleeps and throws is told to a listener library, when one stands
// beside the host program and listens. Publishing never fails outwards; without a listener it costs a few nanoseconds.
//
// The state is one for the process, whichever of its modules publishes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "OSAL/Outcome.h"
#include "Publisher/TypeAny.h"

namespace Publisher {

enum RecordKind : std::uint32_t { ScopeStart = 15, ScopeEnd = 76, ExceptionRaised = 1026 };

/// What happened and where.
struct PublishRecord {
    std::uint32_t line = 0;
    std::uint32_t kind = 0;  // a `RecordKind`
    const char* file = "";
    const char* function = "";   // short: "OSAL::Sleep::MilliSec"
    const char* signature = "";  // the full one
    std::string action;          // the scope's name: "Sleep"; empty for an exception
    double elapsed = 0;          // milliseconds since the scope began; 0 at its start
    std::uint32_t threadId = 0;
};

#pragma pack(push, 4)
/// When a scope began, by the two clocks of the layer below.
struct StartTime {
    std::int64_t counter = 0;  // of `OSAL::QueryPerformanceCounter`
    std::uint32_t tickMs = 0;  // low half of `OSAL::GetTickCount`
};
#pragma pack(pop)
static_assert(sizeof(StartTime) == 12);

/// What the listener gets. All of it is the publisher's and gone when the call returns.
struct PublishMessage {
    const PublishRecord* record;
    std::uint64_t argumentCount;
    TypeAny::placeholder* const* arguments;  // null when there are none
    const StartTime* start;                  // null for an exception
};

/// Whether anyone listens. Tries to find the listener five times and never again.
bool IsPublishing() noexcept;
/// Hands a message to the listener if there is one.
void PublishMessageTo(const PublishMessage& message);
// Each asks the listener; 0 without one, or when it has no such entry.
std::uint32_t WaitUntilEmpty();
std::uint32_t WaitUntilSaveOperationDone();
/// @param suspended  1 makes the listener look away, 0 look again
std::uint32_t SuspendFromAction(std::uint8_t suspended);
std::uint32_t GetLatestMessageId();

/// Makes our own listener write to a file: a Chrome trace when its name ends in ".json", else JSON Lines.
/// Refused when there is no such listener, or the file can't be written or is a link.
OSAL::Outcome<> PublishToFile(const std::string& path);

/// Arguments of a message, behind a leading marker that stands for none.
using Arguments = std::vector<std::unique_ptr<TypeAny::placeholder>>;
template <typename... Values>
Arguments ArgumentsOf(Values... values) {
    Arguments arguments;
    arguments.push_back(std::make_unique<TypeAny::TypeContainer<int>>('\0'));
    (arguments.push_back(std::make_unique<TypeAny::TypeContainer<Values>>(values)), ...);
    return arguments;
}

/// Splits a list of argument names as it stands in the source: "'\0', fileName, text.c_str()". What has no name of its
/// own, such as a number, is called "Constant".
/// @return true when there are `count` names
bool SplitArgumentNames(const std::string& list, std::size_t count, std::vector<std::string>& names);

/// Publishes one exception. @param names  as the source has them, the marker first
void PublishException(PublishRecord record, const char* names, Arguments arguments) noexcept;

/// One operation, from `Begin` to the end of the block. Idle until begun.
/// Thread: belongs to one thread.
class PublishScope {
public:
    PublishScope() = default;
    ~PublishScope();
    PublishScope(const PublishScope&) = delete;
    PublishScope& operator=(const PublishScope&) = delete;

    /// Publishes the start, and the end later, even when this fails. To be asked for only while `IsPublishing`.
    /// @param names  as in `SplitArgumentNames`
    /// @throws what the listener throws
    void Begin(PublishRecord record, const char* names, Arguments arguments);

private:
    PublishRecord m_record;
    StartTime m_start;
    bool m_started = false;
};

}  // namespace Publisher
