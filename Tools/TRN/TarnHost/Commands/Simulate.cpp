#include <algorithm>
#include <filesystem>

#include "Captures/CapturePlan.h"
#include "Commands/Commands.h"
#include "Console/Progress.h"
#include "SampleWriter.h"
#include "Session.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;

struct PlannedFile {
    PlanEntry entry;
    fs::path path;
};

std::vector<PlannedFile> PlanFiles(const std::vector<PlanEntry>& plan, const SimulateOptions& options) {
    std::vector<PlannedFile> files;
    for (unsigned run = 1; run <= options.count; ++run) {
        for (const PlanEntry& entry : plan)
            files.push_back({entry, fs::path(options.folder) / CaptureFileName(entry, run)});
    }
    return files;
}

OSAL::Outcome<> PrepareFolder(const SimulateOptions& options, const std::vector<PlannedFile>& files) {
    std::error_code error;
    fs::create_directories(options.folder, error);
    if (error) return OSAL::Refusal{"can't make the folder '" + options.folder + "': " + error.message()};
    if (options.overwrite) return {};
    // a link that leads nowhere stands there too
    const auto existing = std::ranges::find_if(
        files, [&](const PlannedFile& file) { return fs::exists(fs::symlink_status(file.path, error)); });
    if (existing == files.end()) return {};
    return OSAL::Refusal{"'" + existing->path.string() + "' exists already; --force overwrites"};
}

/// One capture with the highest gain, which an analysis of files assumes.
OSAL::Outcome<> WriteCapture(const PlannedFile& file) {
    const PlanEntry& entry = file.entry;
    const auto recording = quayCommand::RecordCapture({{entry.band, entry.bandwidth, entry.channel}, entry.chain});
    if (!recording) return recording.Why();
    const auto& samples = recording->chains.front();
    return SampleFiles::WriteSampleFile(file.path.string(), samples.i, samples.q);
}

ExitStatus WriteAll(const std::vector<PlannedFile>& files, Context& context) {
    StatusLine status(context.console.err);
    const auto start = std::chrono::steady_clock::now();
    std::size_t done = 0;
    for (const PlannedFile& file : files) {
        if (context.watch.IsRequested()) break;
        status.Show(ProgressText(done, files.size(), std::chrono::steady_clock::now() - start));
        if (const auto written = WriteCapture(file); !written) {
            status.Clear();
            context.console.Say(std::to_string(done) + " of " + std::to_string(files.size()) + " captures are written");
            return Refuse(written.Reason(), context);
        }
        ++done;
    }
    status.Clear();
    const bool isInterrupted = context.watch.IsRequested();
    context.console.Say((isInterrupted ? "interrupted: " : "") + std::to_string(done) + " of " +
                        std::to_string(files.size()) + " captures are written");
    return isInterrupted ? context.watch.Status() : Success;
}

}  // namespace

ExitStatus Execute(const SimulateOptions& options, Context& context) {
    auto setup = context.options.radio;
    if (!options.scene.empty()) setup.air = "sim:" + options.scene;
    if (const auto log = TarnSession::OpenLog(context.options.logPath); !log) return Refuse(log.Reason(), context);
    if (const auto open = TarnSession::OpenRadio(setup); !open) return Refuse(open.Reason(), context, NoAdapter);
    const auto plan = MakeCapturePlan(quayCommand::AdapterInUse(), quayCommand::ReceivesChannel);
    if (!plan) return Refuse("can't ask the adapter for its channels: " + plan.Reason(), context);
    if (plan->empty()) return Refuse("the adapter supports no channel", context);
    const auto files = PlanFiles(*plan, options);
    if (const auto folder = PrepareFolder(options, files); !folder) return Refuse(folder.Reason(), context);
    return CheckRadio(WriteAll(files, context), context);
}

}  // namespace TarnHost
