#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

#include "Captures/CaptureFolder.h"
#include "Commands/HostSession.h"
#include "Console/Progress.h"
#include "Console/ResultTable.h"
#include "Console/TextWidth.h"
#include "Lines/KeyLine.h"
#include "Record.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;
using TarnSession::Exchange;
using TarnSession::Session;

std::string Quoted(const std::string& name) {
    return "'" + Printable(name) + "'";
}

std::string Files(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " file" : " files");
}

/// One analysis of one folder, from the checks before to the report behind.
class FolderAnalysis {
public:
    FolderAnalysis(std::string folder, Context& context)
        : m_context(context),
          m_folder(std::move(folder)),
          m_resultFile(fs::path(m_folder) / "result.csv"),
          m_written(m_resultFile) {}

    ExitStatus Run();

private:
    OSAL::Outcome<> Check();
    /// Nothing when a signal ended it.
    std::optional<Exchange> Scan(Session& session);
    ExitStatus Report(const Exchange& exchange);
    ExitStatus PrintRows();
    void SaySkipped();
    std::size_t Analysable() const;
    /// Analysable files without a line in the result, in the order of the scan.
    std::vector<std::string> Missing() const;

    Context& m_context;
    std::string m_folder;
    fs::path m_resultFile;
    ResultCounter m_written;
    std::string m_line;
    std::vector<FolderEntry> m_entries;
    std::vector<ResultRow> m_rows;
};

OSAL::Outcome<> FolderAnalysis::Check() {
    const auto token = QuotePath(m_folder);
    if (!token) return OSAL::Refusal{"a path with a double quote can't be passed to the plug-in: " + Quoted(m_folder)};
    m_line = "-read_adc_samples_from_file " + *token;
    auto entries = ListCaptures(m_folder);
    if (!entries) return entries.Why();
    m_entries = std::move(*entries);
    if (m_entries.empty()) return {};
    if (const std::string reason = WhyNotWritable(m_folder); !reason.empty())
        return OSAL::Refusal{"can't write " + Quoted(m_resultFile.string()) + ": " + reason};
    return {};
}

std::size_t FolderAnalysis::Analysable() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(m_entries, [](const FolderEntry& entry) { return entry.skipReason.empty(); }));
}

std::optional<Exchange> FolderAnalysis::Scan(Session& session) {
    AnalysisProgress progress(m_context.console.err, m_resultFile, Analysable());
    // The scan can't be stopped from outside, and each file's line is on the disk once the file is done: a signal may
    // end the process at any time.
    auto exchange = PendingLine(session, m_line).Wait(m_context.watch);
    progress.Stop();
    if (exchange) return exchange;
    AbandonLine(session, m_context);
    PrintRows();
    m_context.console.Say("interrupted: " + Files(m_rows.size()) + " of " + std::to_string(Analysable()) +
                          " analysed, kept in " + Quoted(m_resultFile.string()));
    return std::nullopt;
}

ExitStatus FolderAnalysis::PrintRows() {
    // a file that the analysis couldn't write still holds the results of an earlier one
    m_rows = m_written.IsFresh() ? ParseResults(ReadText(m_resultFile)) : std::vector<ResultRow>{};
    if (!m_rows.empty()) m_context.console.out.Write(LayOutTable(m_rows, m_context.console.out.Columns()));
    m_context.console.out.Flush();
    return Success;
}

std::vector<std::string> FolderAnalysis::Missing() const {
    std::set<std::string> analysed;
    for (const ResultRow& row : m_rows)
        analysed.insert(row.file);
    std::vector<std::string> missing;
    for (const FolderEntry& entry : m_entries) {
        if (entry.skipReason.empty() && !analysed.contains(entry.name)) missing.push_back(entry.name);
    }
    return missing;
}

void FolderAnalysis::SaySkipped() {
    for (const FolderEntry& entry : m_entries) {
        if (!entry.skipReason.empty()) m_context.console.Say("skipped " + Quoted(entry.name) + ": " + entry.skipReason);
    }
}

ExitStatus FolderAnalysis::Report(const Exchange& exchange) {
    PrintRows();
    SaySkipped();
    const std::vector<std::string> missing = Missing();
    const std::string done = Files(m_rows.size()) + " of " + std::to_string(Analysable()) + " analysed";
    if (exchange.exitCode != 0) {
        // the scan takes the files in the order of the listing, so it ended at the first one without a result
        const std::string where = missing.empty() ? "" : " at " + Quoted(missing.front());
        m_context.console.Say("the analysis ended" + where + ": " + ErrorSentence(exchange) + " (" + done + ")");
        return Failed;
    }
    if (!missing.empty()) {
        m_context.console.Say("no result for " + Files(missing.size()) + ", the first is " + Quoted(missing.front()) +
                              ": " + Quoted(m_resultFile.string()) + " couldn't be written, or the files changed");
        return Failed;
    }
    if (m_rows.empty())
        m_context.console.Say("none of the " + Files(m_entries.size()) + " in " + Quoted(m_folder) +
                              " can be analysed");
    return Success;
}

ExitStatus FolderAnalysis::Run() {
    if (const auto check = Check(); !check) return Refuse(check.Reason(), m_context);
    TarnSession::KeepingSink sink;
    const auto [session, status] = OpenSession({}, sink, m_context);
    if (!session) return status;
    if (m_entries.empty()) {
        m_context.console.Say("there are no files in " + Quoted(m_folder));
        return Success;
    }
    session->Run("");  // takes away what the start left to say
    if (m_context.watch.IsRequested()) return m_context.watch.Status();
    const auto exchange = Scan(*session);
    return exchange ? CheckRadio(Report(*exchange), m_context) : m_context.watch.Status();
}

}  // namespace

ExitStatus Analyse(const AnalyseOptions& options, Context& context) {
    return FolderAnalysis(options.folder, context).Run();
}

}  // namespace TarnHost
