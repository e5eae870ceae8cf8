#include "ChannelPlan.h"

#include <algorithm>
#include <array>

namespace quayCommand {
namespace {

/// Channels first, first + step, ... up to last.
struct ChannelRun {
    std::uint32_t band, bandwidth, first, last, step;
};

constexpr std::array Runs{
    ChannelRun{0, 0, 1, 14, 1},    ChannelRun{0, 1, 3, 11, 1},                                    // 2.4 GHz
    ChannelRun{1, 0, 36, 144, 4},  ChannelRun{1, 0, 149, 181, 4},                                 // 5.2 GHz, 20 MHz
    ChannelRun{1, 1, 38, 142, 8},  ChannelRun{1, 1, 151, 175, 8},                                 // 40
    ChannelRun{1, 2, 42, 138, 16}, ChannelRun{1, 2, 155, 171, 16},                                // 80
    ChannelRun{1, 3, 50, 114, 32}, ChannelRun{1, 3, 163, 163, 32},                                // 160
    ChannelRun{2, 0, 1, 233, 4},   ChannelRun{2, 1, 3, 227, 8},    ChannelRun{2, 2, 7, 215, 16},  // 6-7 GHz
    ChannelRun{2, 3, 15, 207, 32}, ChannelRun{2, 4, 31, 191, 32},
};

}  // namespace

std::uint32_t WidthMhz(std::uint32_t bandwidth) {
    return bandwidth <= 4 ? 20u << bandwidth : 0;
}

bool IsChannel(std::uint32_t band, std::uint32_t bandwidth, std::uint32_t channel) {
    return std::any_of(Runs.begin(), Runs.end(), [&](const ChannelRun& run) {
        return run.band == band && run.bandwidth == bandwidth && channel >= run.first && channel <= run.last &&
               (channel - run.first) % run.step == 0;
    });
}

double ChannelCentreMhz(std::uint32_t band, std::uint32_t channel) {
    constexpr std::array BandStartMhz{2407.0, 5000.0, 5950.0};
    if (band == 0 && channel == 14) return 2484.0;  // stands apart from the other channels of its band
    return band < BandStartMhz.size() ? BandStartMhz[band] + 5.0 * channel : 0.0;
}

}  // namespace quayCommand
