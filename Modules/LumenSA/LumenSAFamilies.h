// The engine variant of each chip family.
#pragma once

#include <memory>

#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

/// @param boardSku  which front-end the board has: 0, 1 or 2; families without such tables don't look at it
std::unique_ptr<CLmnSA> MakeEngine(ChipFamily family, std::uint32_t boardSku);

}  // namespace LumenSpectrumAnalyzer
