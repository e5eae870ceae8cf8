#include "LumenSAPine.h"

#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

double CLmnPine::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                      const std::string& chain) {
    TRACE_SCOPE("CLmnPine::CalcManualGainFactor");
    return FamilyGain(traceFunctionName, ChipFamily::Pine, preLNAGain, internalGain, band, chain, 0);
}

bool CLmnPine::Is5GHzLowChannel(double channel) {
    TRACE_SCOPE("CLmnPine::Is5GHzLowChannel");
    return ClassOfChannel(ChipFamily::Pine, 1, channel) == ChannelClass::Low;
}

bool CLmnPine::Is6GHzLowChannel(double channel) {
    TRACE_SCOPE("CLmnPine::Is6GHzLowChannel");
    return ClassOfChannel(ChipFamily::Pine, 2, channel) == ChannelClass::Low;
}

}  // namespace LumenSpectrumAnalyzer
