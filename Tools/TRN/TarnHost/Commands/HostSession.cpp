#include "Commands/HostSession.h"

#include "Lines/ShellHelp.h"
#include "Lines/Shorten.h"

namespace TarnHost {

using TarnSession::Exchange;
using TarnSession::Session;
using TarnSession::Step;

void PassingSink::Message(std::string json) {
    if (!json.ends_with('\n')) json += '\n';
    m_console.out.Write(json);
    m_console.out.Flush();
}

void PassingSink::Error(std::string text) {
    while (text.ends_with('\n') || text.ends_with('\r'))
        text.pop_back();
    m_console.Say(text);
}

OpenedSession OpenSession(TarnSession::Options options, TarnSession::ISink& sink, Context& context) {
    Step step = Step::Kernel;
    options.radio = context.options.radio;
    options.logPath = context.options.logPath;
    auto session = Session::Open(options, sink, [&step](Step begun) { step = begun; });
    if (session) return {std::move(*session), Success};
    const bool isAdapters = step == Step::Radio || step == Step::Start;
    return {nullptr, Refuse(session.Reason(), context, isAdapters ? NoAdapter : Failed)};
}

PendingLine::PendingLine(Session& session, const std::string& line, TarnSession::LineOptions options) : m_line(line) {
    const auto take = [slot = m_slot](Exchange exchange) {
        {
            const std::lock_guard lock(slot->mutex);
            slot->answer = std::move(exchange);
        }
        slot->changed.notify_all();
    };
    if (const auto posted = session.Post(line, options, take); !posted)
        take({.line = line, .exitCode = 259, .output = {}, .error = posted.Reason(), .left = line, .warnings = {}});
}

std::optional<Exchange> PendingLine::Wait(const InterruptWatch& watch, std::chrono::milliseconds grace) {
    using Clock = std::chrono::steady_clock;
    constexpr auto lookAtSignals = std::chrono::milliseconds(20);
    constexpr auto none = Clock::time_point::max();
    auto deadline = none;
    std::unique_lock lock(m_slot->mutex);
    while (!m_slot->changed.wait_for(lock, lookAtSignals, [this] { return m_slot->answer.has_value(); })) {
        if (!watch.IsRequested()) continue;
        if (deadline == none) deadline = Clock::now() + grace;
        if (Clock::now() >= deadline) return std::nullopt;
    }
    return std::exchange(m_slot->answer, std::nullopt);
}

void AbandonLine(Session& session, Context& context) {
    session.Abandon();
    context.hasAbandoned = true;
}

std::string FailureText(const Exchange& exchange) {
    const bool isUnknown = exchange.error.starts_with("Unrecognized command line option");
    return Shortened(ErrorSentence(exchange)) + (isUnknown ? Meant(exchange.left) : "");
}

void SayWarnings(const Exchange& exchange, const std::string& place, Context& context) {
    for (const std::string& warning : exchange.warnings)
        context.console.Say((place.empty() ? "" : place + ": ") + Shortened(warning));
}

}  // namespace TarnHost
