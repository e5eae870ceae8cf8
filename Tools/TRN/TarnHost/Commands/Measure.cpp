#include <chrono>
#include <filesystem>

#include "CmdLine/CmdLine.h"
#include "Commands/HostSession.h"
#include "Console/Progress.h"
#include "KeyTable.h"
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
    if (path.empty() || path == "-") return {};
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) return OSAL::Refusal{"can't write '" + path + "': it is a folder"};
    if (fs::is_symlink(path, ignored)) return OSAL::Refusal{"can't write '" + path + "': it is a link"};
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

/// "2026-11-23T03:04:05Z".
std::string UtcNow() {
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const year_month_day day{floor<days>(now)};
    const hh_mm_ss time{now - floor<days>(now)};
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text;
}

/// The gain of the measurement and where it comes from.
std::string GainText(const TarnMeasure::Request& request) {
    if (!request.gainFile.empty()) return "from the file " + request.gainFile;
    std::string index = "0", resistor = "false";
    const CmdLine::TokenList tokens = CmdLine::Tokenize(request.setup);
    for (auto token = tokens.begin(); token != tokens.end(); ++token) {
        const TarnKeys::KeyRow* key = TarnKeys::FindKey(*token);
        if (!key || std::next(token) == tokens.end()) continue;
        if (key->name == "-internal_gain") index = *std::next(token);
        if (key->name == "-preLNA_resistor") resistor = *std::next(token);
    }
    return "index " + index + (index == "0" ? " (the highest gain)" : "") +
           (resistor == "true" ? ", with the resistor before the low-noise amplifier" : "") + ", set by hand";
}

TarnMeasure::Provenance ProvenanceOf(const MeasureOptions& options, const Session& session) {
    return {.utc = UtcNow(),
            .version = TARN_VERSION,
            .adapter = quayCommand::DescribeAdapter(),
            .air = session.AirText(),
            .gain = GainText(options.request),
            .command = options.command};
}

/// One line of keys for the measurement; the error as a sentence.
TarnMeasure::Answer RunKeys(Session& session, const std::string& line, Context& context) {
    const auto exchange = PendingLine(session, line).Wait(context.watch, lineGrace);
    if (!exchange) return {.ok = false, .text = {}, .interrupted = true};
    if (exchange->exitCode != 0) return {.ok = false, .text = FailureText(*exchange)};
    std::string warning;
    for (const std::string& text : exchange->warnings)
        warning += (warning.empty() ? "" : "; ") + text;
    return {.ok = true, .text = exchange->output, .warning = warning};
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
    const auto report = [&](const std::string& path, const OSAL::Outcome<>& written) {
        isFine = isFine && written;
        context.console.Say(written ? "wrote " + path : written.Reason());
    };
    if (!options.picture.empty()) report(options.picture, TarnMeasure::WritePicture(result, options.picture));
    if (!options.csv.empty() && options.csv != "-")
        report(options.csv, OSAL::WriteWholeFile(options.csv, TarnMeasure::CsvText(result)));
    return isFine;
}

void Print(const TarnMeasure::Result& result, const MeasureOptions& options, Output& out) {
    if (options.csv == "-")
        out.Write(TarnMeasure::CsvText(result));
    else if (options.json)
        out.Write(TarnMeasure::JsonText(result, 2) + "\n");
    else
        out.Write(TarnMeasure::TableText(result, out.Columns()));
}

ExitStatus StatusOf(const TarnMeasure::Result& result) {
    using TarnMeasure::Verdict;
    if (result.Has(Verdict::Fail)) return LimitExceeded;
    return result.trouble || result.HasInvalid() || result.Has(Verdict::Invalid) ? Failed : Success;
}

}  // namespace

ExitStatus Execute(const MeasureOptions& options, Context& context) {
    if (const auto check = CheckFiles(options); !check) return Refuse(check.Reason(), context);
    TarnMeasure::Request request = options.request;
    if (!options.limit.empty()) {
        auto limits = TarnMeasure::Limits::Read(options.limit);
        if (!limits) return Refuse(limits.Reason(), context, WrongUsage);
        request.limits = std::move(*limits);
    }
    TarnSession::KeepingSink sink;
    const auto [session, status] = OpenSession({}, sink, context);
    if (!session) return status;
    const auto provenance = ProvenanceOf(options, *session);
    TarnMeasure::Result result = MeasureWithProgress(request, *session, context);
    result.provenance = provenance;
    if (session->Busy()) AbandonLine(*session, context);
    if (result.trouble) context.console.Say(*result.trouble);
    const bool isEmpty = result.channels.empty();
    if (result.interrupted)
        context.console.Say(isEmpty ? "interrupted before the first sweep" : "interrupted; what was measured follows");

    const bool filesAreFine = isEmpty || WriteFiles(result, options, context);
    Print(result, options, context.console.out);
    if (result.interrupted) return context.watch.Status();
    const ExitStatus ending = StatusOf(result);
    return CheckRadio(ending == Success && !filesAreFine ? Failed : ending, context);
}

}  // namespace TarnHost
