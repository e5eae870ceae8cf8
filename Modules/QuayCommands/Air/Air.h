// What a receiver hears: the one border between an adapter and the samples it delivers.
#pragma once

#include <span>
#include <string>

#include "Air/CaptureFacts.h"
#include "OSAL/Outcome.h"

namespace quayCommand {

/// One receive chain of a capture.
struct ChainCapture {
    unsigned chain = 0;   ///< 0 is A, 1 is B
    double gainDb = 0.0;  ///< asked for; see ChainFacts
    std::span<double> i;  ///< written to its end: whole ADC codes of 16 bits, zeros behind a shorter capture
    std::span<double> q;  ///< as long as `i`
};

/// Samples of a filled chain that stand at the end of the ADC's range.
std::size_t CountOverloaded(const ChainCapture& chain);

/// Where and how to listen.
struct CaptureRequest {
    double centreMhz = 0.0;
    double sampleRateMhz = 0.0;
    double bandwidthMhz = 0.0;  ///< width of the tuned channel, at most the sample rate
    std::span<ChainCapture> chains;
};

/// A closed range in MHz.
struct MhzRange {
    double low = 0.0;
    double high = 0.0;
    bool Holds(double mhz) const { return mhz >= low && mhz <= high; }
};

enum class GainTruth {
    Known,   ///< the codes follow the gain: levels at the antenna are what they are
    Nominal  ///< the gain is a figure beside the samples: only differences of levels are to be trusted
};

/// What an air can do. The same for as long as it lives.
struct AirAbilities {
    MhzRange centreMhz;      ///< it tunes to
    MhzRange sampleRateMhz;  ///< it delivers
    unsigned chainMask = 0;  ///< it hears at once; bit 0 A, bit 1 B
    GainTruth gain = GainTruth::Nominal;
    bool hearsWorkload = false;  ///< it delivers other samples while a stress workload runs
};

/// Source of samples. One thread at a time.
class IAir {
public:
    virtual ~IAir() = default;
    /// In a few words for a person.
    virtual std::string Describe() const = 0;
    virtual AirAbilities Abilities() const = 0;
    /// Fills the chains of `request`, which lies within the abilities.
    /// @return what the samples are, or why there are none
    virtual OSAL::Outcome<CaptureFacts> Capture(const CaptureRequest& request) = 0;
};

/// A capture whose samples are what was asked for: other samples would be read as a level at a frequency where they
/// weren't taken. They are refused; the chains of a refused capture are zeroed.
OSAL::Outcome<CaptureFacts> CaptureAsAsked(IAir& air, const CaptureRequest& request);

}  // namespace quayCommand
