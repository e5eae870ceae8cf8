#include "LumenSAElmOak.h"

#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

double CLmnElmOak::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band) {
    TRACE_SCOPE("CLmnElmOak::CalcManualGainFactor");
    static constexpr unsigned Indices = 5;
    static constexpr double StepDb[2][Indices] = {{6, 6, 6, 6, 5}, {7, 7, 7, 8, 5}};
    const double step = internalGain < Indices ? StepDb[band == 0 ? 0 : 1][internalGain] : 0;
    return (5.0 - internalGain) * step - 8.0 * preLNAGain + 67;
}

}  // namespace LumenSpectrumAnalyzer
