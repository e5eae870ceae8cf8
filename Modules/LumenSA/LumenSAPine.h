// Engine variant of the Pine chips.
#pragma once

#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

class CLmnPine : public CLmnSA {
public:
    double CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                const std::string& chain) override;
    /// Up to 140.
    bool Is5GHzLowChannel(double channel) override;
    /// Up to 69.
    bool Is6GHzLowChannel(double channel) override;
};

}  // namespace LumenSpectrumAnalyzer
