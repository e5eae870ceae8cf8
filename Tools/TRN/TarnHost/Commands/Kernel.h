// The kernel of the vector primitives, as the host sees it. The plug-in has a copy of its own that chooses by the same
// rule: what the processor has, or TARN_KERNEL.
#pragma once

#include <optional>
#include <string>

#include "Outcome.h"

namespace TarnHost {

/// The kernels that this machine can run, best first.
std::string KernelNames(const std::string& separator);

/// Why no kernel can be chosen.
std::optional<Failure> CheckKernel();

/// The kernel in use and who chose it; only after CheckKernel() found nothing.
std::string DescribeKernel();

}  // namespace TarnHost
