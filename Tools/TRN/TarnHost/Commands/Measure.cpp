#include <filesystem>

#include "Commands/HostSession.h"
#include "Console/Progress.h"
#include "OSAL/WholeFile.h"
#include "Picture.h"
#include "Record.h"
#include "Report.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;
using TarnSession::Session;

/// How long a line may take to end after Ctrl-C before it is given up.
constexpr auto lineGrace = std::chrono::milliseconds(300);

/// Why a file can't be written there, as far as it shows before the measurement.
OSAL::Outcome<> CheckPlace(const std::string& path) {
    if (path.empty()) return {};
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) return OSAL::Refusal{"can't write '" + path + "': it is a folder"};
    const fs::path folder = fs::absolute(path, ignored).parent_path();
    if (!fs::is_directory(folder, ignored))
        return OSAL::Refusal{"can't write '" + path + "': there is no folder '" + folder.string() + "'"};
    return {};
}

/// Wrong files cost nobody a measurement.
OSAL::Outcome<> CheckFiles(const MeasureOptions& options) {
    auto picture = CheckPlace(options.picture);
    return picture ? CheckPlace(options.csv) : picture;
}

/// One line of keys for the measurement; the error as a sentence.
TarnMeasure::Answer RunKeys(Session& session, const std::string& line, Context& context) {
    const auto exchange = PendingLine(session, line).Wait(context.watch, lineGrace);
    if (!exchange) return {false, {}, true};
    if (exchange->exitCode != 0) return {false, ErrorSentence(*exchange)};
    return {true, exchange->output};
}

TarnMeasure::Result MeasureWithProgress(const TarnMeasure::Request& request, Session& session, Context& context) {
    StatusLine status(context.console.err);
    const auto start = std::chrono::steady_clock::now();
    return TarnMeasure::Measure(
        request, [&](const std::string& line) { return RunKeys(session, line, context); },
        [&](std::size_t done, std::size_t total, const std::string& what) {
            const auto elapsed = std::chrono::steady_clock::now() - start;
            status.Show(what + (what.empty() ? "" : ": ") + ProgressText(done, total, elapsed, "sweeps"));
            return !context.watch.IsRequested();
        });
}

/// Files first: a closed reader of standard output must not cost the person the files asked for.
bool WriteFiles(const TarnMeasure::Result& result, const MeasureOptions& options, Context& context) {
    const InterruptWatch::Finishing finishing(context.watch);
    bool isFine = true;
    const auto report = [&](const std::string& path, const std::optional<std::string>& failure) {
        isFine = isFine && !failure;
        context.console.Say(failure ? *failure : "wrote " + path);
    };
    if (!options.picture.empty()) report(options.picture, TarnMeasure::WritePicture(result, options.picture));
    if (!options.csv.empty()) {
        const auto written = OSAL::WriteWholeFile(options.csv, TarnMeasure::CsvText(result));
        report(options.csv, written ? std::nullopt : std::optional(written.Reason()));
    }
    return isFine;
}

}  // namespace

ExitStatus Measure(const MeasureOptions& options, Context& context) {
    if (const auto check = CheckFiles(options); !check) return Refuse(check.Reason(), context);
    TarnSession::KeepingSink sink;
    const auto [session, status] = OpenSession({}, sink, context);
    if (!session) return status;
    const TarnMeasure::Result result = MeasureWithProgress(options.request, *session, context);
    if (session->Busy()) AbandonLine(*session, context);
    if (result.trouble) context.console.Say(*result.trouble);
    const bool isEmpty = result.channels.empty();
    if (result.interrupted)
        context.console.Say(isEmpty ? "interrupted before the first sweep" : "interrupted; what was measured follows");

    const bool filesAreFine = isEmpty || WriteFiles(result, options, context);
    Output& out = context.console.out;
    out.Write(options.json ? TarnMeasure::JsonText(result, 2) + "\n" : TarnMeasure::TableText(result, out.Columns()));
    if (result.interrupted) return context.watch.Status();
    return CheckRadio(result.trouble || !filesAreFine ? Failed : Success, context);
}

}  // namespace TarnHost
