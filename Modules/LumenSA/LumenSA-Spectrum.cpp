// From the samples of a sweep to a spectrum in dB, and what is kept from sweep to sweep.
#include <algorithm>
#include <cmath>
#include <limits>

#include "ChannelPlan.h"
#include "LumenSA.h"
#include "LumenSABuffers.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

namespace {

/// Per bin, the greater value; a not-a-number never replaces.
void HoldMax(const double* values, double* held, std::uint32_t length) {
    for (std::uint32_t k = 0; k < length; ++k)
        held[k] = values[k] > held[k] ? values[k] : held[k];
}

/// Per bin, the mean of `count` old sweeps and a new one.
void AddToAverage(const double* values, double* average, std::uint32_t count, std::uint32_t length) {
    const double weight = count;
    for (std::uint32_t k = 0; k < length; ++k)
        average[k] = (weight * average[k] + values[k]) / (weight + 1.0);
}

}  // namespace

void CLmnSA::UpdateFromLastSweep() {
    TRACE_SCOPE("CLmnSA::UpdateFromLastSweep");
    if (m_NumChains == 0 && !m_isInit) return;  // a sweep without chains
    RequireSamples();
    try {
        CheckLastSweep();
    } catch (...) {
        VoidSpectra();
        throw;
    }
    const double noiseFloor = m_BandNoiseFloor[m_Band];
    for (int c = 0; c < m_NumChains; ++c)
        UpdateChain(c, noiseFloor);
}

/// Refuses a sweep that gives no spectrum, before any work.
void CLmnSA::CheckLastSweep() {
    static constexpr const char* traceFunctionName = "CLmnSA::UpdateFromLastSweep";  // a step of it
    if (m_NumOfSubBuffers == 0 || std::uint64_t{m_NumOfSubBuffers} * m_NumOfBins > m_NumOfSamples)
        ThrowNew(traceFunctionName,
                 Common::Format("A sweep of ${1} samples is too short for ${2} bins") % m_NumOfSamples % m_NumOfBins);
    if (m_Band >= m_BandNoiseFloor.size()) ThrowValue(traceFunctionName, "Band is not supported");
    if (GetProperty(LmnSAProperty::MaxHold)) ChannelBuffer(m_MaxHold, 0);
}

/// No number at all instead of the sweep's before, which would stand beside the samples of this one.
void CLmnSA::VoidSpectra() {
    for (int c = 0; c < m_NumChains; ++c) {
        std::fill_n(m_Spectrum[c]->val, m_NumOfBins, std::numeric_limits<double>::quiet_NaN());
        m_ChannelPowerPerChain[c] = std::numeric_limits<double>::quiet_NaN();
    }
}

void CLmnSA::UpdateChain(int chain, double noiseFloor) {
    constexpr const char* traceFunctionName = "CLmnSA::UpdateFromLastSweep";  // a step of it
    double* const spectrum = m_Spectrum[chain]->val;
    const bool staysLinear = m_VesperTestInProgress && m_IsBRK;
    m_buffers->chains[chain].spectrumIsLinear = true;
    CheckStatus(kelpsSweepPower_64fc(reinterpret_cast<const Kelp64fc*>(m_CurrSweep[chain]->val),
                                     static_cast<int>(m_NumOfSubBuffers), spectrum, m_pFFTSpec, m_pFFTSpecBuffer),
                traceFunctionName);
    if (GetProperty(LmnSAProperty::FreqCompensation)) CompensateFrequency(spectrum);
    if (!m_VesperTestInProgress) UpdateChannelPower(chain, noiseFloor);
    if (!staysLinear) {
        LinearToLog(spectrum, chain);
        m_buffers->chains[chain].spectrumIsLinear = false;
    }
    ShiftHalves(spectrum);
    if (m_VesperTestInProgress) CalcChannelAverageAndPeak(spectrum, static_cast<unsigned>(chain));
    if (GetProperty(LmnSAProperty::MaxHold)) {
        TRACE(Streams::TraceDebug, "Calculate Max Hold buffer for graph plotting");
        HoldMax(spectrum, ChannelBuffer(m_MaxHold, chain), m_NumOfBins);
    }
    if (GetProperty(LmnSAProperty::Histogram)) CalculateHistogram(chain);
    if (GetProperty(LmnSAProperty::Average)) {
        TRACE(Streams::TraceDebug, "Calculate Average buffer for graph plotting");
        AddToAverage(spectrum, m_Average[chain]->val, m_ChannelAverageCounter[chain], m_NumOfBins);
    }
}

void CLmnSA::UpdateChannelPower(int chain, double noiseFloor) {
    constexpr const char* traceFunctionName = "CLmnSA::UpdateFromLastSweep";  // a step of it
    const double* source = m_Spectrum[chain]->val;
    if (GetProperty(LmnSAProperty::MaxHold)) {
        TRACE(Streams::TraceDebug, "Calculating channel power on max hold buffer");
        double* const held = ChannelBuffer(m_ChannelPowerMaxHold, chain);
        HoldMax(source, held, m_NumOfBins);
        source = held;
    } else if (GetProperty(LmnSAProperty::Average)) {
        TRACE(Streams::TraceDebug, "Calculating channel power on average buffer");
        double* const average = m_ChannelPowerAverage[chain]->val;
        AddToAverage(source, average, m_ChannelAverageCounter[chain], m_NumOfBins);
        source = average;
    } else {
        TRACE(Streams::TraceDebug, "Calculating channel power on spectrum buffer");
    }
    m_ChannelPowerPerChain[chain] = CalcChannelPower(source, m_Gain[chain], noiseFloor);
}

/// Undoes the receiver's first-order roll-off: power times (f / cutoff)^2 + 1, f being the distance from DC in MHz.
void CLmnSA::CompensateFrequency(double* power) {
    const double step = m_RBW / 1000.0;
    const double cutoff = GetFrequencyCutoff();
    const std::uint32_t half = m_NumOfBins / 2;
    for (std::uint32_t k = 0; k < m_NumOfBins; ++k) {
        const double above = k * step;
        const double distance = (k < half ? above : m_SampleRate - above) / cutoff;
        power[k] *= distance * distance + 1.0;
    }
}

/// Corner of the frequency compensation in MHz.
double CLmnSA::GetFrequencyCutoff() {
    TRACE_SCOPE("CLmnSA::GetFrequencyCutoff");
    const auto isWidth = [this](const RadioFacts::Bandwidth& width) {
        return static_cast<int>(width.mhz) == m_Bandwidth;
    };
    const auto row = std::ranges::find_if(RadioFacts::Bandwidths, isWidth);
    return row == RadioFacts::Bandwidths.end() ? 1.0 : row->cutoffMhz;
}

void CLmnSA::LinearToLog(double* pCurr, int chain) {
    TRACE_SCOPE("CLmnSA::LinearToLog");
    static constexpr const char* LogText = "KELP Error occured";
    CheckChain(static_cast<unsigned>(chain), traceFunctionName);
    RequireBuffers();
    const int bins = static_cast<int>(m_NumOfBins);
    const KelpStatus status = kelpsLog10_64f_A53(pCurr, m_pAuxBinsBuffer, bins);
    if (status != kelpStsSingularity) CheckStatus(status, traceFunctionName, LogText);
    CheckStatus(kelpsMulC_64f(m_pAuxBinsBuffer, 10.0, pCurr, bins), traceFunctionName, LogText);
    CheckStatus(kelpsSubC_64f_I(m_Gain[chain], pCurr, bins), traceFunctionName, LogText);
}

/// Brings the lowest frequency to the front.
void CLmnSA::ShiftHalves(double* spectrum) {
    constexpr const char* traceFunctionName = "CLmnSA::UpdateFromLastSweep";  // a step of it
    static constexpr const char* LogText = "KELP Error occured";
    const int half = static_cast<int>(m_NumOfBins / 2);
    CheckStatus(kelpsCopy_64f(spectrum, m_pSubBufferTmp, half), traceFunctionName, LogText);
    CheckStatus(kelpsCopy_64f(spectrum + half, spectrum, half), traceFunctionName, LogText);
    CheckStatus(kelpsCopy_64f(m_pSubBufferTmp, spectrum + half, half), traceFunctionName, LogText);
}

}  // namespace LumenSpectrumAnalyzer
