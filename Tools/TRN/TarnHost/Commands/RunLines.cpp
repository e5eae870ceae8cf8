#include <memory>

#include "Commands/HostSession.h"
#include "Lines/ScriptReader.h"
#include "Record.h"

namespace TarnHost {
namespace {

using TarnSession::Exchange;
using TarnSession::Session;

/// How long a running command line may take to end after Ctrl-C before it is given up.
constexpr auto interruptGrace = std::chrono::milliseconds(500);

/// Runs one line after the other until one fails, the reader of the answers is gone, or a signal comes.
class LineRunner {
public:
    LineRunner(const RunOptions& options, Context& context)
        : m_options(options), m_context(context), m_passing(context.console) {}

    ExitStatus Run();

private:
    TarnSession::ISink& Sink() {
        if (m_options.record) return m_keeping;
        return m_passing;
    }
    std::optional<ExitStatus> RunAll(Session& session);
    std::optional<ExitStatus> RunScript(Session& session, ScriptReader& reader);
    /// False when no further line shall run.
    bool RunOne(Session& session, const std::string& line, const std::string& place);
    void Show(const Exchange& exchange, const std::string& place);

    const RunOptions& m_options;
    Context& m_context;
    PassingSink m_passing;
    TarnSession::KeepingSink m_keeping;
    bool m_hasFailed = false;
};

void LineRunner::Show(const Exchange& exchange, const std::string& place) {
    Console& console = m_context.console;
    if (m_options.record) {
        console.out.Write(RecordText(exchange, m_keeping) + "\n");
        m_keeping = {};
    } else if (exchange.exitCode == 0 && !exchange.output.empty()) {
        console.out.Write(exchange.output);
        if (!exchange.output.ends_with('\n')) console.out.Write("\n");
    }
    console.out.Flush();
    // A failed line's output is the error once more behind "ERROR:"; a person reads it once, here.
    if (exchange.exitCode != 0) {
        console.Say(place + ": " + FailureText(exchange));
    } else {
        SayWarnings(exchange, place, m_context);
    }
}

bool LineRunner::RunOne(Session& session, const std::string& line, const std::string& place) {
    if (m_context.watch.IsRequested() || !m_context.console.out.Ok()) return false;
    const auto exchange = PendingLine(session, line, {m_options.plainOutput}).Wait(m_context.watch, interruptGrace);
    if (!exchange) {
        AbandonLine(session, m_context);
        m_context.console.Say("interrupted while " + place + " ran");
        return false;
    }
    Show(*exchange, place);
    if (exchange->exitCode != 0) m_hasFailed = true;
    return exchange->exitCode == 0 || m_options.keepGoing;
}

std::optional<ExitStatus> LineRunner::RunScript(Session& session, ScriptReader& reader) {
    while (const auto line = reader.Next()) {
        if (!RunOne(session, line->text, "line " + std::to_string(line->number))) break;
    }
    if (reader.Trouble()) return Refuse(*reader.Trouble(), m_context);
    return std::nullopt;
}

std::optional<ExitStatus> LineRunner::RunAll(Session& session) {
    for (std::size_t k = 0; k < m_options.lines.size(); ++k) {
        if (!RunOne(session, m_options.lines[k], "line " + std::to_string(k + 1))) break;
    }
    return std::nullopt;
}

ExitStatus LineRunner::Run() {
    std::optional<ScriptReader> reader;
    if (!m_options.script.empty()) {
        auto opened = ScriptReader::Open(m_options.script, m_context.watch);
        if (!opened) return Refuse(opened.Reason(), m_context);
        reader.emplace(std::move(*opened));
    }
    TarnSession::Options options;
    options.isFrontEnd = m_options.isFrontEnd;
    const auto [session, status] = OpenSession(options, Sink(), m_context);
    if (!session) return status;
    const auto trouble = reader ? RunScript(*session, *reader) : RunAll(*session);
    if (m_context.watch.IsRequested()) {
        if (!m_context.hasAbandoned) m_context.console.Say("interrupted");
        return m_context.watch.Status();
    }
    return CheckRadio(trouble.value_or(m_hasFailed ? Failed : Success), m_context);
}

}  // namespace

ExitStatus Execute(const RunOptions& options, Context& context) {
    return LineRunner(options, context).Run();
}

}  // namespace TarnHost
