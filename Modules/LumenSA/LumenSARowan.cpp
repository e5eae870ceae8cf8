#include "LumenSARowan.h"

#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

double CLmnRowan::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                       const std::string& chain) {
    TRACE_SCOPE("CLmnRowan::CalcManualGainFactor");
    return FamilyGain(traceFunctionName, ChipFamily::Rowan, preLNAGain, internalGain, band, chain, m_BoardSKU);
}

bool CLmnRowan::Is5GHzLowChannel(double channel) {
    TRACE_SCOPE("CLmnRowan::Is5GHzLowChannel");
    return ClassOfChannel(ChipFamily::Rowan, 1, channel) == ChannelClass::Low;
}

bool CLmnRowan::Is6GHzLowChannel(double channel) {
    TRACE_SCOPE("CLmnRowan::Is6GHzLowChannel");
    return ClassOfChannel(ChipFamily::Rowan, 2, channel) == ChannelClass::Low;
}

}  // namespace LumenSpectrumAnalyzer
