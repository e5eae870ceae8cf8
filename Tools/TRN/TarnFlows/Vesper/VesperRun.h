// The order in which a whole test sweeps.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "Device/ChannelDatabase.h"
#include "Vesper/VesperSettings.h"

/// The channels of one band, placeholder row included.
struct VesperBand {
    std::uint32_t band = 0;
    std::vector<ChannelRow> rows;
};

/// One sweep.
struct VesperStep {
    std::uint32_t band = 0;
    ChannelRow channel;
    std::string chain;  ///< "A", "B" or "AB"
    std::int32_t iteration = 1;
};

/// Calls `sweep` for every iteration of every channel, band by band; in the mode that takes chain A, then B, a
/// channel's iterations run with A and once more with B. `settings` may change between two calls.
void RunVesperSteps(const VesperSettings& settings, const std::vector<VesperBand>& bands,
                    const std::function<void(const VesperStep&)>& sweep);
