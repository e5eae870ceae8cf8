#include "Air/Workload.h"

#include <algorithm>
#include <array>

#include "OSAL/Process.h"

namespace quayCommand {
namespace {

/// Names of the workload's program, as the flows start it and as a person may.
constexpr std::array Programs{"bit", "bit_cmd_line_x64"};

}  // namespace

bool WorkloadSense::IsRunning() const {
    if (m_setting != Workload::Auto) return m_setting == Workload::On;
    return std::ranges::any_of(Programs, [](const char* name) { return OSAL::IsProcessRunning(name, false); });
}

}  // namespace quayCommand
