#include "LumenSAFirYew.h"

#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

double CLmnFirYew::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                        const std::string& chain) {
    TRACE_SCOPE("CLmnFirYew::CalcManualGainFactor");
    return FamilyGain(traceFunctionName, ChipFamily::FirYew, preLNAGain, internalGain, band, chain, 0);
}

}  // namespace LumenSpectrumAnalyzer
