// What the openers of all kinds of air are given.
#pragma once

#include <cstdint>

#include "Air/Workload.h"
#include "RadioSetup.h"

namespace quayCommand {

/// What an air may need of the set-up that it is part of.
struct AirContext {
    std::uint64_t seed = 1;  ///< same seed, same samples, where an air makes its samples itself
    StoredTuning storedTuning = StoredTuning::ByName;
    const WorkloadSense* workload = nullptr;  ///< outlives the air; null: there is never a workload
};

}  // namespace quayCommand
