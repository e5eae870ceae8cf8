#include "LumenSAAsh2.h"

#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

double CLmnAsh2::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                      const std::string& chain) {
    TRACE_SCOPE("CLmnAsh2::CalcManualGainFactor");
    return FamilyGain(traceFunctionName, ChipFamily::Ash2, preLNAGain, internalGain, band, chain, m_BoardSKU);
}

}  // namespace LumenSpectrumAnalyzer
