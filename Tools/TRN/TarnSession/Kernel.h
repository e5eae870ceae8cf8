// The kernel of the vector primitives, as this side sees it. The plug-in has a copy of its own that chooses by the same
// rule: what the processor has, or TARN_KERNEL.
#pragma once

#include <string>

#include "OSAL/Outcome.h"

namespace TarnSession {

/// The kernels that this machine can run, best first.
std::string KernelNames(const std::string& separator);

/// Refused when no kernel can be chosen.
OSAL::Outcome<> CheckKernel();

/// The kernel in use and who chose it; only after CheckKernel() was fine.
std::string DescribeKernel();

}  // namespace TarnSession
