#include "LumenSAAsh4.h"

#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

double CLmnAsh4::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                      const std::string& chain) {
    TRACE_SCOPE("CLmnAsh4::CalcManualGainFactor");
    return FamilyGain(traceFunctionName, ChipFamily::Ash4, preLNAGain, internalGain, band, chain, m_BoardSKU);
}

}  // namespace LumenSpectrumAnalyzer
