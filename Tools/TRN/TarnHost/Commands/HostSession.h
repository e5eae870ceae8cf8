// A session of the plug-in at the program's border: exit statuses, standard streams, and waits that a signal ends.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "Commands/Commands.h"
#include "Session.h"

namespace TarnHost {

/// Passes everything on at once: messages and texts to standard output, each ended by a line end, errors to standard
/// error.
class PassingSink final : public TarnSession::ISink {
public:
    explicit PassingSink(Console& console) : m_console(console) {}
    void Message(std::string json) override;
    void Text(std::string text) override { Message(std::move(text)); }
    void Error(std::string text) override;

private:
    Console& m_console;
};

/// A session, or the status of the program once the reason was said.
struct OpenedSession {
    std::unique_ptr<TarnSession::Session> session;
    ExitStatus status = Success;
};
OpenedSession OpenSession(TarnSession::Options options, TarnSession::ISink& sink, Context& context);

/// A line that was handed to the session.
class PendingLine {
public:
    PendingLine(TarnSession::Session& session, const std::string& line, TarnSession::LineOptions options = {});

    /// The answer, once. Nothing when a signal came and the line didn't end within `grace` behind it: the line goes on,
    /// and a later Wait gets its answer.
    std::optional<TarnSession::Exchange> Wait(const InterruptWatch& watch, std::chrono::milliseconds grace = {});
    const std::string& Line() const { return m_line; }

private:
    struct Slot {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<TarnSession::Exchange> answer;
    };

    std::string m_line;
    std::shared_ptr<Slot> m_slot = std::make_shared<Slot>();
};

/// Gives up the line that runs, for a program that ends behind a signal.
void AbandonLine(TarnSession::Session& session, Context& context);

/// Why a line failed, for a person: shortened, and behind a mistyped key the one that comes near.
std::string FailureText(const TarnSession::Exchange& exchange);

/// What a line that succeeded left to say, each on a line of standard error behind `place`.
void SayWarnings(const TarnSession::Exchange& exchange, const std::string& place, Context& context);

}  // namespace TarnHost
