// The burn-in desense test as a command: the front-end variant is driven line by line, so that Ctrl-C keeps what was
// measured and ends the load.
#include <chrono>
#include <ctime>
#include <filesystem>

#include "Commands/HostSession.h"
#include "Console/Progress.h"
#include "DesenseReport.h"
#include "OSAL/Machine.h"
#include "OSAL/Process.h"
#include "OSAL/WholeFile.h"
#include "Record.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;
using namespace TarnMeasure;

/// How long a line that runs may take to end after Ctrl-C before it is given up: a sweep does, the wait for the
/// workload doesn't.
constexpr auto lineGrace = std::chrono::milliseconds(300);
/// The same for a line that ends the load or keeps what was measured.
constexpr auto keepingGrace = std::chrono::seconds(2);
constexpr const char* workloadName = "bit";

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

DesenseAnswer RunKeys(TarnSession::Session& session, TarnSession::KeepingSink& sink, const std::string& line,
                      Keeping& keeping, Context& context) {
    DesenseAnswer answer;
    const std::chrono::milliseconds grace = keeping.HasBegun() ? keepingGrace : lineGrace;
    const auto exchange = PendingLine(session, line).Wait(context.watch, grace);
    keeping.HasBegun();
    if (!exchange) {
        answer.interrupted = true;
        return answer;
    }
    answer.messages = std::exchange(sink.messages, {});
    answer.ok = exchange->exitCode == 0;
    if (!answer.ok) answer.error = ErrorSentence(*exchange);
    return answer;
}

DesenseResult RunWithProgress(const DesenseRequest& request, TarnSession::Session& session,
                              TarnSession::KeepingSink& sink, Keeping& keeping, Context& context) {
    StatusLine status(context.console.err);
    const auto start = std::chrono::steady_clock::now();
    DesenseIo io;
    io.run = [&](const std::string& line) { return RunKeys(session, sink, line, keeping, context); };
    io.message = [&](const std::string& text) {
        if (status.IsOn() && text.find("Sampling channel") != std::string::npos) return;  // the progress says it
        status.Clear();
        context.console.Say(text);
    };
    io.progress = [&](const DesenseStep& step) {
        status.Show(step.what + ": " +
                    ProgressText(step.done, step.total, std::chrono::steady_clock::now() - start, "sweeps"));
        return !keeping.HasBegun();
    };
    io.isLoaded = [] { return OSAL::IsProcessRunning(workloadName, false); };
    return RunDesense(request, io);
}

bool WriteReports(const DesenseResult& result, const VesperOptions& options, const DesenseOrigin& origin,
                  Context& context) {
    const InterruptWatch::Finishing finishing(context.watch);
    bool isFine = true;
    for (const auto& [name, text] : {std::pair{"result.json", DesenseJson(result, origin)},
                                     {"junit.xml", DesenseJunit(result, origin)},
                                     {"report.html", DesenseHtml(result, origin)}}) {
        const auto written = OSAL::WriteWholeFile(fs::path(options.request.folder) / name, text);
        if (!written) context.console.Say(written.Reason());
        isFine = isFine && written;
    }
    return isFine;
}

ExitStatus StatusOf(const DesenseResult& result, const std::string& failOn) {
    const bool isMargin = failOn == "margin" && result.Has(Verdict::Margin);
    if (failOn != "none" && (result.Has(Verdict::Fail) || isMargin)) return LimitExceeded;
    return !result.trouble.empty() || result.channels.empty() || result.Has(Verdict::Invalid) ? Failed : Success;
}

}  // namespace

ExitStatus Vesper(const VesperOptions& options, Context& context) {
    DesenseRequest request = options.request;
    if (!options.limit.empty()) {
        auto limits = Limits::Read(options.limit);
        if (!limits) return Refuse(limits.Reason(), context, WrongUsage);
        request.limits = std::move(*limits);
    }
    std::error_code error;
    fs::create_directories(request.folder, error);
    if (!fs::is_directory(request.folder, error))
        return Refuse("can't make the folder '" + request.folder + "'", context);
    TarnSession::KeepingSink sink;
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
