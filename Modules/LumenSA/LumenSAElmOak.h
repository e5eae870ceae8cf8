// Engine variant of the Elm and Oak chips.
#pragma once

#include "LumenSA.h"

namespace LumenSpectrumAnalyzer {

class CLmnElmOak : public CLmnSA {
public:
    using CLmnSA::CalcManualGainFactor;
    /// This family's older formula with a step that depends on the gain index. SetManualGain doesn't use it: gain comes
    /// from the base formula, as for every engine without a correction table.
    virtual double CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band);
};

}  // namespace LumenSpectrumAnalyzer
