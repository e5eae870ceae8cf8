#include "Diagnostics.h"

#include "OSAL/Crash.h"
#include "Publisher/Publisher.h"

namespace TarnHost {

std::optional<std::string> StartDiagnostics(const DiagnosticOptions& options) {
    if (!options.noCrashReport) OSAL::InstallCrashReports();
    if (options.publishPath.empty()) return std::nullopt;
    const auto published = Publisher::PublishToFile(options.publishPath);
    return published ? std::nullopt : std::optional(published.Reason());
}

}  // namespace TarnHost
