// The kinds of air and how each is opened.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Air/Air.h"
#include "Air/Workload.h"
#include "OSAL/Outcome.h"
#include "RadioSetup.h"

namespace quayCommand {

/// What an air may need of the set-up that it is part of.
struct AirContext {
    std::uint64_t seed = 1;  ///< same seed, same samples, where an air makes its samples itself
    StoredTuning storedTuning = StoredTuning::ByName;
    const WorkloadSense* workload = nullptr;  ///< outlives the air; null: there is never a workload
};

/// The air of a person's text, "PREFIX" or "PREFIX:ARGUMENT"; empty text is the default air. A refusal begins with
/// "air: ".
OSAL::Outcome<std::unique_ptr<IAir>> OpenAir(const std::string& text, const AirContext& context);

}  // namespace quayCommand
