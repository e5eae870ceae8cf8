#include "LumenSABay.h"

#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

double CLmnBay::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                     const std::string& chain) {
    TRACE_SCOPE("CLmnBay::CalcManualGainFactor");
    return FamilyGain(traceFunctionName, ChipFamily::Bay, preLNAGain, internalGain, band, chain, m_BoardSKU);
}

}  // namespace LumenSpectrumAnalyzer
