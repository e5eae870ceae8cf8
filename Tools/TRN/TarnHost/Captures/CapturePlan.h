// Which settings a run over the adapter's bands, widths and chains visits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "RadioSetup.h"

namespace TarnHost {

struct PlanEntry {
    std::uint32_t band = 0;       ///< 0 is 2.4 GHz, 1 is 5.2 GHz, 2 is 6-7 GHz
    std::uint32_t bandwidth = 0;  ///< 0 is 20 MHz, 1 is 40, 2 is 80, 3 is 160, 4 is 320
    std::uint32_t channel = 0;
    std::uint32_t chain = 1;  ///< 1 is A, 2 is B
    bool operator==(const PlanEntry&) const = default;
};

/// Asks the adapter for a channel; the radio's `ReceivesChannel`.
using Receives = std::function<OSAL::Outcome<bool>(const quayCommand::RadioTuning&)>;

/// Some channels of each band at each width that the adapter supports, each with every chain: those that people use
/// most, or the lowest supported one where the adapter has none of them.
/// @return the reason when the adapter can't be asked
OSAL::Outcome<std::vector<PlanEntry>> MakeCapturePlan(const quayCommand::AdapterDescription& adapter,
                                                      const Receives& receives);

/// "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_003.txt": the name by which an analysis knows the settings.
std::string CaptureFileName(const PlanEntry& entry, unsigned run);

}  // namespace TarnHost
