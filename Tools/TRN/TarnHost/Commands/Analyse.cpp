#include <filesystem>
#include <fstream>
#include <sstream>

#include "CaptureName.h"
#include "Captures/CaptureFolder.h"
#include "Commands/HostSession.h"
#include "Console/Progress.h"
#include "Console/ResultTable.h"
#include "Lines/KeyLine.h"
#include "OSAL/ScratchFolder.h"
#include "OSAL/WholeFile.h"
#include "Record.h"
#include "SampleReader.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;
using TarnSession::Session;

std::string Files(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " file" : " files");
}

/// A folder of our own in which the plug-in meets one capture at a time, so that a bad one costs no other, and what
/// stands in the person's folder stays until all results are there.
class Stage {
public:
    explicit Stage(OSAL::ScratchFolder folder) : m_scratch(std::move(folder)), m_folder(m_scratch.Path()) {}

    /// Puts the capture in, under its name.
    OSAL::Outcome<> Put(const fs::path& capture) {
        std::error_code error;
        fs::create_symlink(capture, m_folder / capture.filename(), error);
        if (error) return OSAL::Refusal{"can't be put before the plug-in: " + error.message()};
        return {};
    }
    /// Takes it out again with its result. @return the power's text; empty when the plug-in wrote none
    std::string TakePower(const std::string& name) {
        std::error_code ignored;
        fs::remove(m_folder / name, ignored);
        const fs::path file = m_folder / "result.csv";
        std::ostringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        const auto rows = ParseResults(text.str());
        fs::remove(file, ignored);
        return rows.size() == 1 ? rows[0].power : std::string();
    }

private:
    OSAL::ScratchFolder m_scratch;
    fs::path m_folder;
};

/// One analysis of one folder, from the checks before to the report behind.
class FolderAnalysis {
public:
    FolderAnalysis(const AnalyseOptions& options, Context& context)
        : m_options(options), m_context(context), m_resultFile(fs::path(options.folder) / "result.csv") {}

    ExitStatus Run();

private:
    OSAL::Outcome<> Check();
    ExitStatus RunOn(Session& session, Stage& stage);
    /// False when no further file shall be looked at.
    bool RunOne(Session& session, Stage& stage, const std::string& name);
    void Complain(const std::string& name, const std::string& why);
    ExitStatus Report(bool isInterrupted);
    void Say(const std::string& text) { m_context.console.Say(text); }

    const AnalyseOptions& m_options;
    Context& m_context;
    fs::path m_resultFile;
    std::string m_line;
    CaptureFolder m_captures;
    std::vector<ResultRow> m_rows;
    std::size_t m_badFiles = 0;
};

OSAL::Outcome<> FolderAnalysis::Check() {
    auto captures = ListCaptures(m_options.folder, [this] { return !m_context.watch.IsRequested(); });
    if (!captures) return captures.Why();
    m_captures = std::move(*captures);
    if (m_captures.files.empty()) return {};
    return CheckResultPlace(m_options.folder, {m_options.overwrite});
}

void FolderAnalysis::Complain(const std::string& name, const std::string& why) {
    ++m_badFiles;
    Say("'" + name + "': " + why);
}

bool FolderAnalysis::RunOne(Session& session, Stage& stage, const std::string& name) {
    const fs::path capture = fs::absolute(fs::path(m_options.folder) / name);
    if (const auto put = stage.Put(capture); !put) {
        Complain(name, put.Reason());
        return true;
    }
    const auto exchange = PendingLine(session, m_line).Wait(m_context.watch, std::chrono::milliseconds(300));
    if (!exchange) {
        AbandonLine(session, m_context);
        return false;
    }
    const std::string power = stage.TakePower(name);
    if (exchange->exitCode == 0 && !power.empty()) {
        const auto tuning = SampleFiles::ReadCaptureName(name).value_or(SampleFiles::CaptureName{});
        m_rows.push_back({name, power, tuning.band, tuning.channel, tuning.bandwidth, tuning.chain});
        for (const std::string& warning : exchange->warnings)
            Complain(name, warning);
        return true;
    }
    const std::string badLine = SampleFiles::BadLine(capture.string());
    const std::string why = exchange->exitCode != 0 ? ErrorSentence(*exchange) : "the plug-in gave no result";
    Complain(name, badLine.empty() ? why : badLine);
    return !quayCommand::RadioTrouble();
}

ExitStatus FolderAnalysis::RunOn(Session& session, Stage& stage) {
    StatusLine status(m_context.console.err);
    const auto start = std::chrono::steady_clock::now();
    std::size_t done = 0;
    bool isGoingOn = true;
    for (const std::string& name : m_captures.files) {
        if (!isGoingOn || m_context.watch.IsRequested() || !m_context.console.out.Ok()) break;
        status.Show(ProgressText(done++, m_captures.files.size(), std::chrono::steady_clock::now() - start));
        const std::size_t before = m_badFiles;
        isGoingOn = RunOne(session, stage, name);
        if (m_badFiles != before) status.Forget();  // a complaint took its line
    }
    status.Clear();
    return Report(m_context.watch.IsRequested());
}

/// What was analysed is printed whatever happened, but an earlier result gives way to a complete one only.
ExitStatus FolderAnalysis::Report(bool isInterrupted) {
    Output& out = m_context.console.out;
    if (!m_rows.empty()) out.Write(LayOutTable(m_rows, out.Columns()));
    out.Flush();
    for (const std::string& skipped : m_captures.skipped)
        Say("skipped " + skipped);
    if (m_captures.skippedCount > m_captures.skipped.size())
        Say("skipped " + std::to_string(m_captures.skippedCount - m_captures.skipped.size()) + " more");
    const std::string done = Files(m_rows.size()) + " of " + std::to_string(m_captures.files.size()) + " analysed";
    const bool isComplete = m_rows.size() + m_badFiles >= m_captures.files.size() && !isInterrupted;
    std::error_code ignored;
    const bool isKept = isComplete || !fs::exists(m_resultFile, ignored);
    if (isKept && !m_rows.empty()) {
        const InterruptWatch::Finishing finishing(m_context.watch);
        if (const auto written = OSAL::WriteWholeFile(m_resultFile, ResultText(m_rows)); !written)
            return Refuse(written.Reason(), m_context);
    }
    const std::string place = "'" + m_resultFile.string() + "'";
    if (isInterrupted || !isComplete) {
        const std::string kept = m_rows.empty() ? ""
                                 : isKept       ? ", kept in " + place
                                                : "; " + place + " stays as it was";
        Say((isInterrupted ? "interrupted: " : "the analysis ended: ") + done + kept);
        return isInterrupted ? m_context.watch.Status() : Failed;
    }
    if (m_badFiles == 0) return Success;
    Say(done);
    return Failed;
}

ExitStatus FolderAnalysis::Run() {
    if (const auto check = Check(); !check)
        return m_context.watch.IsRequested() ? m_context.watch.Status() : Refuse(check.Reason(), m_context);
    if (m_captures.files.empty()) {
        for (const std::string& skipped : m_captures.skipped)
            Say("skipped " + skipped);
        Say(m_captures.skippedCount == 0
                ? "there are no files in '" + m_options.folder + "'"
                : "none of the " + Files(m_captures.skippedCount) + " in '" + m_options.folder + "' can be analysed");
        return Success;
    }
    auto scratch = OSAL::ScratchFolder::Make("tarn-analyse");
    if (!scratch) return Refuse(scratch.Reason(), m_context);
    const auto token = QuotePath(scratch->Path());
    if (!token) return Refuse("TMPDIR names a folder with a double quote in its name", m_context);
    m_line = "-read_adc_samples_from_file " + *token;
    TarnSession::KeepingSink sink;
    const auto [session, status] = OpenSession({}, sink, m_context);
    if (!session) return status;
    session->Run("");  // takes away what the start left to say
    Stage stage(std::move(*scratch));
    return CheckRadio(RunOn(*session, stage), m_context);
}

}  // namespace

ExitStatus Execute(const AnalyseOptions& options, Context& context) {
    return FolderAnalysis(options, context).Run();
}

}  // namespace TarnHost
