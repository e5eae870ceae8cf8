// The histogram of a sweep's values, and the copies between the engine's buffers and a caller's.
#include <algorithm>
#include <array>

#include "LumenSA.h"
#include "LumenSABuffers.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

namespace {

/// Counts values in equal buckets from `least` on; the greatest value belongs to the last bucket. With no width (all
/// values equal) everything falls into the first.
std::array<std::uint32_t, CLmnSA::HistogramBuckets> CountBuckets(const double* values, std::uint32_t length,
                                                                 double least, double width) {
    std::array<std::uint32_t, CLmnSA::HistogramBuckets> counts{};
    for (std::uint32_t k = 0; k < length; ++k)
        ++counts[WholeWithin((values[k] - least) / width, CLmnSA::HistogramBuckets - 1)];
    return counts;
}

}  // namespace

/// Both I and Q use the range of all values. The sweep is I and Q side by side, so its histogram is the sum of theirs.
void CLmnSA::CalculateHistogram(int chain) {
    TRACE_SCOPE("CLmnSA::CalculateHistogram");
    double least = 0;
    double greatest = 0;
    CheckStatus(kelpsMinMax_64f(m_CurrSweep[chain]->val, static_cast<int>(2 * m_NumOfSamples), &least, &greatest),
                traceFunctionName);
    *m_HistogramRange[chain] = {least, greatest};
    const double width = (greatest - least) / HistogramBuckets;
    const auto countsI = CountBuckets(m_ISweep[chain]->val, m_NumOfSamples, least, width);
    const auto countsQ = CountBuckets(m_QSweep[chain]->val, m_NumOfSamples, least, width);
    for (int b = 0; b < HistogramBuckets; ++b) {
        m_HistogramI[chain]->val[b] = countsI[b];
        m_HistogramQ[chain]->val[b] = countsQ[b];
        m_Histogram[chain]->val[b] = static_cast<double>(countsI[b]) + countsQ[b];
    }
}

void CLmnSA::CopyOut(const std::array<ValBuffer*, MaxChains>& from, double** to, unsigned length) {
    RequireBuffers();
    for (int c = 0; c < m_NumChains; ++c)
        std::copy_n(from[c]->val, length, to[c]);
}

void CLmnSA::CopyIn(double** from, const std::array<ValBuffer*, MaxChains>& to, unsigned length) {
    RequireBuffers();
    for (int c = 0; c < m_NumChains; ++c)
        std::copy_n(from[c], length, to[c]->val);
}

void CLmnSA::UpdateSpectrum(double** out) {
    TRACE_SCOPE("CLmnSA::UpdateSpectrum");
    CopyOut(m_Spectrum, out, m_NumOfBins);
}

void CLmnSA::UpdateChannelAverage(double** out) {
    TRACE_SCOPE("CLmnSA::UpdateChannelAverage");
    CopyOut(m_Average, out, m_NumOfBins);
}

void CLmnSA::UpdateMaxHold(double** out) {
    TRACE_SCOPE("CLmnSA::UpdateMaxHold");
    RequireBuffers();
    for (int c = 0; c < m_NumChains; ++c)
        std::copy_n(ChannelBuffer(m_MaxHold, c), m_NumOfBins, out[c]);
}

void CLmnSA::UpdateHistogram(double** hist, double** histI, double** histQ, std::pair<double, double>* range) {
    TRACE_SCOPE("CLmnSA::UpdateHistogram");
    CopyOut(m_Histogram, hist, HistogramBuckets);
    CopyOut(m_HistogramI, histI, HistogramBuckets);
    CopyOut(m_HistogramQ, histQ, HistogramBuckets);
    for (int c = 0; c < m_NumChains; ++c)
        range[c] = *m_HistogramRange[c];
}

void CLmnSA::UpdateIQ(double** i, double** q) {
    TRACE_SCOPE("CLmnSA::UpdateIQ");
    RequireSamples();
    for (int c = 0; c < m_NumChains; ++c)
        CheckStatus(kelpsCplxToReal_64fc(reinterpret_cast<const Kelp64fc*>(m_CurrSweep[c]->val), i[c], q[c],
                                         static_cast<int>(m_NumOfSamples)),
                    traceFunctionName);
}

void CLmnSA::UpdatePeaksData(PeakList* out) {
    TRACE_SCOPE("CLmnSA::UpdatePeaksData");
    for (int c = 0; m_Peaks && c < std::min<int>(m_NumChains, MaxChains); ++c)
        if (m_Peaks[c]) out[c].insert(out[c].end(), m_Peaks[c]->begin(), m_Peaks[c]->end());
}

void CLmnSA::SaveSpectrum(double** in) {
    TRACE_SCOPE("CLmnSA::SaveSpectrum");
    CopyIn(in, m_Spectrum, m_NumOfBins);
    for (ChainBuffers& chain : m_buffers->chains)
        chain.spectrumIsLinear = false;
}

void CLmnSA::SaveChannelAverage(double** in) {
    TRACE_SCOPE("CLmnSA::SaveChannelAverage");
    CopyIn(in, m_Average, m_NumOfBins);
}

void CLmnSA::SaveMaxHold(double** in) {
    TRACE_SCOPE("CLmnSA::SaveMaxHold");
    RequireBuffers();
    for (int c = 0; c < m_NumChains; ++c)
        std::copy_n(in[c], m_NumOfBins, ChannelBuffer(m_MaxHold, c));
}

void CLmnSA::SaveHistogram(double** hist, double** histI, double** histQ, const std::pair<double, double>* range) {
    TRACE_SCOPE("CLmnSA::SaveHistogram");
    CopyIn(hist, m_Histogram, HistogramBuckets);
    CopyIn(histI, m_HistogramI, HistogramBuckets);
    CopyIn(histQ, m_HistogramQ, HistogramBuckets);
    for (int c = 0; c < m_NumChains; ++c)
        *m_HistogramRange[c] = range[c];
}

}  // namespace LumenSpectrumAnalyzer
