// What a receiver hears: the one border between an adapter and the samples it delivers.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace quayCommand {

constexpr std::size_t MaxChains = 2;

/// One receive chain of a capture.
struct ChainCapture {
    unsigned chain = 0;   ///< 0 is A, 1 is B
    double gainDb = 0.0;  ///< from antenna to ADC: 0 dBm at the antenna is 10^(gainDb / 20) codes
    std::span<double> i;  ///< gets whole ADC codes of 16 bits; arrives zeroed, and stays so behind a shorter capture
    std::span<double> q;  ///< as long as `i`
};

/// Where and how to listen.
struct CaptureRequest {
    double centreMhz = 0.0;
    double sampleRateMhz = 0.0;
    double bandwidthMhz = 0.0;  ///< width of the tuned channel, at most the sample rate
    std::span<ChainCapture> chains;
};

/// Source of samples. One thread at a time.
class IAir {
public:
    virtual ~IAir() = default;
    /// In a few words for a person.
    virtual std::string Describe() const = 0;
    /// Fills the chains of `request`.
    /// @return false when nothing could be captured
    virtual bool Capture(const CaptureRequest& request) = 0;
};

}  // namespace quayCommand
