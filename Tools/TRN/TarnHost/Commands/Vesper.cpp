// The burn-in desense test as a command: the front-end variant is driven line by line, so that Ctrl-C keeps what was
// measured and ends the load.
#include <chrono>
#include <ctime>
#include <filesystem>
#include <mutex>

#include "Commands/HostSession.h"
#include "Console/Progress.h"
#include "DesenseReport.h"
#include "OSAL/Machine.h"
#include "OSAL/Process.h"
#include "Record.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;
using namespace TarnMeasure;

/// How long a line that runs may take to end after Ctrl-C before it is given up: the wait for the workload goes on for
/// longer, a sweep and what keeps its results don't, and a load that doesn't listen is killed after 5 s.
constexpr auto waitGrace = std::chrono::milliseconds(300);
constexpr auto lineGrace = std::chrono::milliseconds(2000);
constexpr auto stopGrace = std::chrono::milliseconds(6500);

std::string UtcText() {
    const std::time_t now = std::time(nullptr);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", std::gmtime(&now));
    return text;
}

/// From Ctrl-C on, an end by force waits until the results are kept.
class Keeping {
public:
    explicit Keeping(InterruptWatch& watch) : m_watch(watch) {}
    /// True once a signal came.
    bool HasBegun() {
        if (!m_finishing && m_watch.IsRequested()) m_finishing.emplace(m_watch);
        return m_finishing.has_value();
    }

private:
    InterruptWatch& m_watch;
    std::optional<InterruptWatch::Finishing> m_finishing;
};

/// Keeps the messages of a line, and says those of the test as they come.
class SayingSink final : public TarnSession::ISink {
public:
    explicit SayingSink(Console& console) : m_status(console.err), m_console(console) {}
    void Message(std::string json) override {
        if (const auto said = DesenseSaid(json)) Say(*said);
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(std::move(json));
    }
    void Text(std::string) override {}
    void Error(std::string) override {}

    void Say(const std::string& text) {
        const std::lock_guard lock(m_mutex);
        if (m_status.IsOn() && text.find("Sampling channel") != std::string::npos) return;  // the progress says it
        m_status.Clear();
        m_console.Say(text);
    }
    void Show(const std::string& progress) {
        const std::lock_guard lock(m_mutex);
        m_status.Show(progress);
    }
    void Hide() {
        const std::lock_guard lock(m_mutex);
        m_status.Clear();
    }
    std::vector<std::string> Take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_messages, {});
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_messages;
    StatusLine m_status;
    Console& m_console;
};

DesenseAnswer RunKeys(TarnSession::Session& session, SayingSink& sink, const std::string& line, Keeping& keeping,
                      Context& context) {
    DesenseAnswer answer;
    answer.wereShown = true;
    const bool waits = line.find("-start_vesper_test") != std::string::npos;
    const auto grace = waits ? waitGrace : line == "-stop_vesper_test" ? stopGrace : lineGrace;
    std::optional<InterruptWatch::Finishing> finishing;  // an end by force comes before a line of 2 s would have ended
    if (!waits) finishing.emplace(context.watch);
    const auto exchange = PendingLine(session, line).Wait(context.watch, grace);
    keeping.HasBegun();
    answer.messages = sink.Take();
    if (!exchange) {
        answer.interrupted = true;
        return answer;
    }
    answer.ok = exchange->exitCode == 0;
    if (!answer.ok) answer.error = ErrorSentence(*exchange);
    return answer;
}

DesenseResult RunWithProgress(const DesenseRequest& request, TarnSession::Session& session, SayingSink& sink,
                              Keeping& keeping, Context& context) {
    WorkloadWatch workload;
    DesenseIo io;
    io.run = [&](const std::string& line) { return RunKeys(session, sink, line, keeping, context); };
    io.message = [&](const std::string& text) { sink.Say(text); };
    io.progress = [&](const DesenseStep& step) {
        sink.Show(step.what + ": " +
                  ProgressText(step.done, step.total, std::chrono::duration<double>(step.sweeping_s), "sweeps"));
        return !keeping.HasBegun();
    };
    io.isLoaded = [&] { return workload.IsRunning(); };
    DesenseResult result = RunDesense(request, io);
    sink.Hide();
    return result;
}

bool WriteReports(const DesenseResult& result, const VesperOptions& options, const DesenseOrigin& origin,
                  Context& context) {
    const InterruptWatch::Finishing finishing(context.watch);
    const std::vector<std::string> failures = WriteDesenseReports(result, origin, options.request.folder);
    for (const std::string& failure : failures)
        context.console.Say(failure);
    return failures.empty();
}

ExitStatus StatusOf(const DesenseResult& result, const std::string& failOn) {
    if (!result.trouble.empty() || result.Gravest() == Verdict::Invalid) return Failed;
    const bool isMargin = failOn == "margin" && result.Has(Verdict::Margin);
    return failOn != "none" && (result.Has(Verdict::Fail) || isMargin) ? LimitExceeded : Success;
}

}  // namespace

ExitStatus Execute(const VesperOptions& options, Context& context) {
    DesenseRequest request = options.request;
    if (!options.limit.empty()) {
        auto limits = Limits::Read(options.limit);
        if (!limits) return Refuse(limits.Reason(), context, WrongUsage);
        request.limits = std::move(*limits);
        request.limitText = options.limit;
    }
    std::error_code error;
    fs::create_directories(request.folder, error);
    if (!fs::is_directory(request.folder, error))
        return Refuse("can't make the folder '" + request.folder + "'", context);
    SayingSink sink(context.console);
    TarnSession::Options opening;
    opening.isFrontEnd = true;
    const auto [session, status] = OpenSession(opening, sink, context);
    if (!session) return status;
    const DesenseOrigin origin{UtcText(),
                               TARN_VERSION,
                               quayCommand::DescribeAdapter(),
                               session->AirText(),
                               OSAL::GetComputerName() + ", " + OSAL::GetProcessorBrand(),
                               options.command};
    Keeping keeping(context.watch);
    const DesenseResult result = RunWithProgress(request, *session, sink, keeping, context);
    if (session->Busy()) AbandonLine(*session, context);
    if (result.channels.empty() && !result.interrupted)
        return Refuse("'" + request.config + "': " + result.trouble, context);
    if (!result.trouble.empty()) context.console.Say(result.trouble);
    if (result.interrupted) context.console.Say("interrupted; what was measured is kept");
    const bool filesAreFine = WriteReports(result, options, origin, context);
    context.console.out.Write(DesenseTable(result));
    if (result.interrupted) return context.watch.Status();
    const ExitStatus ending = StatusOf(result, options.failOn);
    return CheckRadio(ending == Success && !filesAreFine ? Failed : ending, context);
}

}  // namespace TarnHost
