// What the program keeps of itself for those who look for a fault in it.
#pragma once

#include <optional>
#include <string>

namespace TarnHost {

struct DiagnosticOptions {
    std::string publishPath;     ///< where operations, waits and exceptions are told of; empty: nowhere
    bool noCrashReport = false;  ///< a crash leaves no report
};

/// Starts both, for the rest of the program. @return why one can't be; empty when both are on
std::optional<std::string> StartDiagnostics(const DiagnosticOptions& options);

}  // namespace TarnHost
