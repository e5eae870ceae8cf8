// What the samples of a capture really are, told by the air that gave them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quayCommand {

constexpr std::size_t MaxChains = 2;

/// One chain of a capture.
struct ChainFacts {
    double gainDb = 0.0;                ///< from antenna to ADC: 0 dBm at the antenna is 10^(gainDb / 20) codes
    bool isGainKnown = false;           ///< false: `gainDb` is what was asked for, and the samples needn't follow it
    std::size_t overloadedSamples = 0;  ///< samples with I or Q at the end of the ADC's range
    std::size_t samples = 0;            ///< delivered; fewer than asked for when a stored capture is shorter
};

/// One capture. Chains stand in the order in which they were asked for.
struct CaptureFacts {
    double centreMhz = 0.0;
    double sampleRateMhz = 0.0;
    double startUs = 0.0;           ///< of the first sample, on the air's own clock
    std::uint64_t lostSamples = 0;  ///< within the capture: anything but 0 is a gap
    std::array<ChainFacts, MaxChains> chains{};
};

}  // namespace quayCommand
