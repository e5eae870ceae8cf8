#include "Kernel.h"

#include <cstdlib>

#include "Kelp.h"

namespace TarnSession {
namespace {

std::string ForcedName() {
    const char* name = std::getenv("TARN_KERNEL");
    return name ? name : "";
}

}  // namespace

std::string KernelNames(const std::string& separator) {
    std::string names;
    for (const char* const* name = kelpKernelNames(); *name; ++name)
        names += (names.empty() ? "" : separator) + *name;
    return names;
}

OSAL::Outcome<> CheckKernel() {
    if (kelpInit() >= 0) return {};
    return OSAL::Refusal{"TARN_KERNEL names '" + ForcedName() + "', and this machine can run " + KernelNames(", ") +
                         " only"};
}

std::string DescribeKernel() {
    return kelpKernelName() + std::string(ForcedName().empty() ? " (chosen by processor" : " (by TARN_KERNEL") +
           "; this machine can run " + KernelNames(", ") + ")";
}

}  // namespace TarnSession
