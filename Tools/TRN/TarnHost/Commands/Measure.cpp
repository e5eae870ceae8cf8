#include <fstream>

#include "Captures/SampleFile.h"
#include "Commands/Commands.h"
#include "Console/Progress.h"
#include "Picture.h"
#include "Report.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;

/// Why a file can't be written there, as far as it shows before the measurement.
std::optional<Failure> CheckPlace(const std::string& path) {
    if (path.empty()) return std::nullopt;
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) return Failure{"can't write '" + path + "': it is a folder"};
    const fs::path folder = fs::absolute(path, ignored).parent_path();
    if (!fs::is_directory(folder, ignored))
        return Failure{"can't write '" + path + "': there is no folder '" + folder.string() + "'"};
    return std::nullopt;
}

/// Wrong files cost nobody a measurement.
std::optional<Failure> CheckFiles(const MeasureOptions& options) {
    if (!options.picture.empty() && !TarnMeasure::IsPicturePath(options.picture))
        return Failure{"'" + options.picture + "': a picture's ending is .png, .svg or .pdf", WrongUsage};
    std::error_code ignored;
    if (!options.picture.empty() && !options.csv.empty() &&
        fs::weakly_canonical(fs::absolute(options.picture), ignored) ==
            fs::weakly_canonical(fs::absolute(options.csv), ignored))
        return Failure{"--picture and --csv name the same file", WrongUsage};
    if (auto failure = CheckPlace(options.picture)) return failure;
    return CheckPlace(options.csv);
}

/// One line of keys for the measurement; the error as a sentence.
TarnMeasure::Answer RunKeys(Session& session, const std::string& line) {
    const Exchange exchange = session.Run(line);
    if (exchange.exitCode != 0) return {false, ErrorSentence(exchange)};
    return {true, exchange.output};
}

TarnMeasure::Result MeasureWithProgress(const TarnMeasure::Request& request, Session& session, Context& context) {
    StatusLine status(context.console.err);
    const auto start = std::chrono::steady_clock::now();
    return TarnMeasure::Measure(
        request, [&](const std::string& line) { return RunKeys(session, line); },
        [&](std::size_t done, std::size_t total, const std::string& what) {
            const auto elapsed = std::chrono::steady_clock::now() - start;
            status.Show(what + (what.empty() ? "" : ": ") + ProgressText(done, total, elapsed, "sweeps"));
            return !context.watch.IsRequested();
        });
}

/// Files first: a closed reader of standard output must not cost the person the files asked for.
bool WriteFiles(const TarnMeasure::Result& result, const MeasureOptions& options, Context& context) {
    bool isFine = true;
    const auto report = [&](const std::string& path, const std::optional<std::string>& failure) {
        isFine = isFine && !failure;
        context.console.Say(failure ? *failure : "wrote " + path);
    };
    if (!options.picture.empty()) report(options.picture, TarnMeasure::WritePicture(result, options.picture));
    if (!options.csv.empty()) {
        const auto failure = WriteWhole(options.csv, TarnMeasure::CsvText(result));
        report(options.csv, failure ? std::optional(failure->message) : std::nullopt);
    }
    return isFine;
}

}  // namespace

ExitStatus Measure(const MeasureOptions& options, Context& context) {
    if (const auto failure = CheckFiles(options)) return Refuse(*failure, context);
    KeepingReceiver receiver;
    auto session = Session::Open(context.options, {}, receiver);
    if (!session) return Refuse(session.Why(), context);
    const TarnMeasure::Result result = MeasureWithProgress(options.request, **session, context);
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
