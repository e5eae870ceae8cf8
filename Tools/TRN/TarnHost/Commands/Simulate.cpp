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

/// Every capture of the plan, run after run; made as they are asked for, as they can be millions.
class PlannedFiles {
public:
    PlannedFiles(const std::vector<PlanEntry>& plan, const SimulateOptions& options)
        : m_plan(plan), m_folder(options.folder), m_count(plan.size() * options.count) {}

    std::size_t Count() const { return m_count; }
    PlannedFile operator[](std::size_t index) const {
        const PlanEntry& entry = m_plan[index % m_plan.size()];
        const auto run = static_cast<unsigned>(index / m_plan.size() + 1);
        return {entry, m_folder / CaptureFileName(entry, run)};
    }

private:
    const std::vector<PlanEntry>& m_plan;
    fs::path m_folder;
    std::size_t m_count;
};

OSAL::Outcome<> PrepareFolder(const SimulateOptions& options, const PlannedFiles& files, const Context& context) {
    std::error_code error;
    fs::create_directories(options.folder, error);
    if (error) return OSAL::Refusal{"can't make the folder '" + options.folder + "': " + error.message()};
    if (options.overwrite || fs::is_empty(options.folder, error)) return {};
    for (std::size_t k = 0; k < files.Count() && !context.watch.IsRequested(); ++k) {
        const fs::path path = files[k].path;
        if (fs::exists(fs::symlink_status(path, error)))  // a link that leads nowhere stands there too
            return OSAL::Refusal{"'" + path.string() + "' exists already; --force overwrites"};
    }
    return {};
}

/// One capture with the highest gain, which an analysis of files assumes.
OSAL::Outcome<> WriteCapture(const PlannedFile& file) {
    const PlanEntry& entry = file.entry;
    const auto recording = quayCommand::RecordCapture({{entry.band, entry.bandwidth, entry.channel}, entry.chain});
    if (!recording) return recording.Why();
    const auto& samples = recording->chains.front();
    return SampleFiles::WriteSampleFile(file.path.string(), samples.i, samples.q);
}

ExitStatus WriteAll(const PlannedFiles& files, Context& context) {
    StatusLine status(context.console.err);
    const auto start = std::chrono::steady_clock::now();
    std::size_t done = 0;
    while (done < files.Count() && !context.watch.IsRequested()) {
        status.Show(ProgressText(done, files.Count(), std::chrono::steady_clock::now() - start));
        if (const auto written = WriteCapture(files[done]); !written) {
            status.Clear();
            context.console.Say(std::to_string(done) + " of " + std::to_string(files.Count()) +
                                " captures are written");
            return Refuse(written.Reason(), context);
        }
        ++done;
    }
    status.Clear();
    const bool isInterrupted = context.watch.IsRequested();
    context.console.Say((isInterrupted ? "interrupted: " : "") + std::to_string(done) + " of " +
                        std::to_string(files.Count()) + " captures are written");
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
    const PlannedFiles files(*plan, options);
    if (const auto folder = PrepareFolder(options, files, context); !folder) return Refuse(folder.Reason(), context);
    return CheckRadio(WriteAll(files, context), context);
}

}  // namespace TarnHost
