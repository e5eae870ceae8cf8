// Gain and the small setters.
#include "LumenSA.h"
#include "LumenSABuffers.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

void CLmnSA::SetManualGain(unsigned preLNAGain, unsigned internalGain, unsigned band) {
    TRACE_SCOPE("CLmnSA::SetManualGain");
    const bool both = m_ChainName == "AB";
    m_Gain[0] = CalcManualGainFactor(preLNAGain, internalGain, band, both ? "A" : m_ChainName);
    m_Gain[1] = both ? CalcManualGainFactor(preLNAGain, internalGain, band, "B") : 0.0;
    m_Gain[2] = 0.0;
}

void CLmnSA::SetFileGain(double gain) {
    TRACE_SCOPE("CLmnSA::SetFileGain");
    m_Gain[0] = gain;
    m_Gain[1] = gain;
}

double CLmnSA::GetManualGain(unsigned chain) {
    TRACE_SCOPE("CLmnSA::GetManualGain");
    CheckChain(chain, traceFunctionName);
    return m_Gain[chain];
}

double CLmnSA::CalcManualGainFactor(unsigned preLNAGain, unsigned internalGain, unsigned band,
                                    const std::string& chain) {
    TRACE_SCOPE("CLmnSA::CalcManualGainFactor");
    return FamilyGain(traceFunctionName, ChipFamily::Plain, preLNAGain, internalGain, band, chain, 0);
}

bool CLmnSA::Is5GHzLowChannel(double channel) {
    TRACE_SCOPE("CLmnSA::Is5GHzLowChannel");
    return ClassOfChannel(ChipFamily::Plain, 1, channel) == ChannelClass::Low;
}

bool CLmnSA::Is6GHzLowChannel(double channel) {
    TRACE_SCOPE("CLmnSA::Is6GHzLowChannel");
    return ClassOfChannel(ChipFamily::Plain, 2, channel) == ChannelClass::Low;
}

bool CLmnSA::Is5GHzHighChannel(double channel) {
    TRACE_SCOPE("CLmnSA::Is5GHzHighChannel");
    return ClassOfChannel(ChipFamily::Plain, 1, channel) == ChannelClass::High;
}

bool CLmnSA::Is6GHzHighChannel(double channel) {
    TRACE_SCOPE("CLmnSA::Is6GHzHighChannel");
    return ClassOfChannel(ChipFamily::Plain, 2, channel) == ChannelClass::High;
}

double CLmnSA::GetChannelPowerPerChain(int chain) {
    TRACE_SCOPE("CLmnSA::GetChannelPowerPerChain");
    CheckChain(static_cast<unsigned>(chain), traceFunctionName);
    return m_ChannelPowerPerChain[chain];
}

void CLmnSA::SetChannelPowerPerChain(int chain, double power) {
    TRACE_SCOPE("CLmnSA::SetChannelPowerPerChain");
    CheckChain(static_cast<unsigned>(chain), traceFunctionName);
    m_ChannelPowerPerChain[chain] = power;
}

void CLmnSA::SetChannelAverageCounterPerChain(int chain, unsigned count) {
    TRACE_SCOPE("CLmnSA::SetChannelAverageCounterPerChain");
    CheckChain(static_cast<unsigned>(chain), traceFunctionName);
    m_ChannelAverageCounter[chain] = count;
}

double CLmnSA::GetChannelAverageVesper(unsigned chain) {
    TRACE_SCOPE("CLmnSA::GetChannelAverageVesper");
    CheckChain(chain, traceFunctionName);
    return m_ChannelAverage[chain];
}

double CLmnSA::GetChannelPeakVesper(unsigned chain) {
    TRACE_SCOPE("CLmnSA::GetChannelPeakVesper");
    CheckChain(chain, traceFunctionName);
    return m_ChannelPeak[chain];
}

double CLmnSA::GetChannelPeakFreqVesper(unsigned chain) {
    TRACE_SCOPE("CLmnSA::GetChannelPeakFreqVesper");
    CheckChain(chain, traceFunctionName);
    return m_ChannelPeakFreq[chain];
}

void CLmnSA::SetVesperTestInProgress(bool inProgress) {
    TRACE_SCOPE("CLmnSA::SetVesperTestInProgress");
    m_VesperTestInProgress = inProgress;
}

void CLmnSA::SetIsBRK(bool isBRK) {
    TRACE_SCOPE("CLmnSA::SetIsBRK");
    m_IsBRK = isBRK;
}

void CLmnSA::SetBandNoiseFloor(unsigned band, int noiseFloor) {
    TRACE_SCOPE("CLmnSA::SetBandNoiseFloor");
    TRACE(Streams::TraceInfo, Common::Format("band = ${1}, noiseFloor = ${2}") % band % noiseFloor);
    if (band >= m_BandNoiseFloor.size()) ThrowValue(traceFunctionName, "Band is not supported");
    m_BandNoiseFloor[band] = noiseFloor;
}

}  // namespace LumenSpectrumAnalyzer
