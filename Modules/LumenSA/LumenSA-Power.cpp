// Channel power, the burn-in test's in-band figures, and the clearing of max hold and average.
#include <algorithm>
#include <cmath>

#include "LumenSA.h"
#include "LumenSABuffers.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

/// Total power in dB of the bins within half the bandwidth on both sides of DC, minus gain; with de-embedding the noise
/// floor's power is taken off a total above it.
/// @param linear  m_NumOfBins linear powers, DC first
double CLmnSA::CalcChannelPower(const double* linear, double gain, double noiseFloor) {
    TRACE_SCOPE("CLmnSA::CalcChannelPower");
    const int bins = static_cast<int>(m_NumOfBins);
    const int half = WholeWithin(m_Bandwidth / m_SampleRate * m_NumOfBins * 0.5, bins / 2);
    double total = 0.0;
    for (int k = 0; k <= half; ++k)
        total += linear[k];
    for (int k = bins - half; k < bins; ++k)
        total += linear[k];
    double power = 10.0 * std::log10(total) - gain;
    if (GetProperty(LmnSAProperty::PowerDeembedding) && power > noiseFloor)
        power = 10.0 * std::log10(std::pow(10.0, power / 10.0) - std::pow(10.0, noiseFloor / 10.0));
    return power;
}

/// Mean and peak over the band, leaving out known spikes. A band without bins gets the spectrum's first bin for both.
void CLmnSA::CalcChannelAverageAndPeak(const double* spectrum, unsigned chain) {
    TRACE_SCOPE("CLmnSA::CalcChannelAverageAndPeak");
    if (!spectrum) ThrowValue(traceFunctionName, "Buffer is empty");
    CheckChain(chain, traceFunctionName);
    int start = 0;
    int end = 0;
    CalculateFreqIndices(m_Bandwidth, m_SampleRate, m_NumOfBins, &start, &end);
    double frequency = BandStart();
    double sum = 0.0;
    double peak = spectrum[0];
    double peakFrequency = frequency;
    int skipped = 0;
    for (int k = start; k < end; ++k) {
        if (std::fmod(frequency, m_KnownSpikePeriod) < m_KnownSpikeTolerance) {
            TRACE(Streams::TraceDebug,
                  Common::Format("Ignoring known spike in sample ${1} of channel ${2} band ${3} chain ${4}") %
                      frequency % m_Channel % m_Band % m_ChainName);
            ++skipped;
        } else {
            sum += spectrum[k];
            if (spectrum[k] > peak) {
                peak = spectrum[k];
                peakFrequency = frequency;
            }
        }
        frequency += m_RBW / 1000.0;
    }
    const int counted = end - skipped - start;
    m_ChannelAverage[chain] = counted > 0 ? sum / counted : peak;
    m_ChannelPeak[chain] = peak;
    m_ChannelPeakFreq[chain] = peakFrequency;
}

double CLmnSA::CalculateAverage(const double* buffer, int length) {
    TRACE_SCOPE("CLmnSA::CalculateAverage");
    double sum = 0.0;
    for (int k = 0; k < length; ++k)
        sum += buffer[k];
    return sum / length;
}

void CLmnSA::MaxHoldClear() {
    TRACE_SCOPE("CLmnSA::MaxHoldClear");
    TRACE(Streams::TraceDebug, "Initalizing m_MaxHold buffer to -KELP_MAXABS_64F");
    const int chains = std::min(m_NumChains, m_buffers->chainCount);
    for (int c = 0; c < chains; ++c)
        for (const auto* buffers : {&m_buffers->chains[c].maxHold, &m_buffers->chains[c].channelPowerMaxHold})
            for (const ValBuffer& channel : buffers->views)
                CheckStatus(kelpsSet_64f(-KELP_MAXABS_64F, channel.val, static_cast<int>(m_buffers->bins)),
                            traceFunctionName);
}

void CLmnSA::AverageClear() {
    TRACE_SCOPE("CLmnSA::AverageClear");
    TRACE(Streams::TraceDebug, "Initalizing m_Average buffer to 0");
    const int chains = std::min(m_NumChains, m_buffers->chainCount);
    for (const auto* buffers : {&m_Average, &m_ChannelPowerAverage})
        for (int c = 0; c < chains; ++c)
            CheckStatus(kelpsSet_64f(0.0, (*buffers)[c]->val, static_cast<int>(m_buffers->bins)), traceFunctionName);
}

}  // namespace LumenSpectrumAnalyzer
