// Engine variant of the Fir and Yew chips.
#pragma once

#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

class CLmnFirYew : public CLmnSA {
public:
    double CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                const std::string& chain) override;
};

}  // namespace LumenSpectrumAnalyzer
