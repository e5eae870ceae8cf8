#include <algorithm>
#include <filesystem>

#include "Captures/RadioCapture.h"
#include "Captures/SampleFile.h"
#include "Commands/Commands.h"
#include "Console/Progress.h"
#include "OSAL/WholeFile.h"
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
    const auto existing =
        std::ranges::find_if(files, [&](const PlannedFile& file) { return fs::exists(file.path, error); });
    if (existing == files.end()) return {};
    return OSAL::Refusal{"'" + existing->path.string() + "' exists already; --force overwrites"};
}

ExitStatus WriteAll(RadioCapture& radio, const std::vector<PlannedFile>& files, Context& context) {
    StatusLine status(context.console.err);
    const auto start = std::chrono::steady_clock::now();
    std::size_t done = 0;
    for (const PlannedFile& file : files) {
        if (context.watch.IsRequested()) break;
        status.Show(ProgressText(done, files.size(), std::chrono::steady_clock::now() - start));
        auto samples = radio.Capture(file.entry);
        const auto written =
            samples ? OSAL::WriteWholeFile(file.path, SampleText(*samples)) : OSAL::Outcome<>(samples.Why());
        if (!written) {
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

ExitStatus Simulate(const SimulateOptions& options, Context& context) {
    auto setup = context.options.radio;
    if (!options.scene.empty()) setup.air = "sim:" + options.scene;
    if (const auto log = TarnSession::OpenLog(context.options.logPath); !log) return Refuse(log.Reason(), context);
    if (const auto open = TarnSession::OpenRadio(setup); !open) return Refuse(open.Reason(), context, NoAdapter);
    auto radio = RadioCapture::Open();
    if (!radio) return Refuse(radio.Reason(), context, NoAdapter);
    const auto plan = radio->Plan();
    if (!plan) return Refuse(plan.Reason(), context);
    if (plan->empty()) return Refuse("the adapter supports no channel", context);
    const auto files = PlanFiles(*plan, options);
    if (const auto folder = PrepareFolder(options, files); !folder) return Refuse(folder.Reason(), context);
    return CheckRadio(WriteAll(*radio, files, context), context);
}

}  // namespace TarnHost
