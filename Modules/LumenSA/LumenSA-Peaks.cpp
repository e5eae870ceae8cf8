// What counts as in band, the peak search, and the spur check.
#include <algorithm>
#include <cmath>
#include <vector>

#include "LumenSA.h"
#include "LumenSABuffers.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

namespace {

/// Bins in one slice of the search: m_WindowSize, kept where three slices can be counted.
int SliceWidth(std::int32_t windowSize) {
    return std::clamp(windowSize, 1, 1 << 24);
}

}  // namespace

void CLmnSA::CalculateFreqIndices(int bandwidth, double sampleRate, unsigned numOfBins, int* start, int* end) {
    TRACE_SCOPE("CLmnSA::CalculateFreqIndices");
    *start = 0;
    *end = 0;
    const bool known = bandwidth == 20 || bandwidth == 40 || bandwidth == 80 || bandwidth == 160;
    if (known && sampleRate > 0) {
        const unsigned half = numOfBins / 2;
        const int halfBand = bandwidth / 2;
        const double offset = halfBand / sampleRate * numOfBins;
        const int most = static_cast<int>(numOfBins);
        *start = WholeWithin(half - offset, most);
        *end = WholeWithin(half + offset, most);
    }
    TRACE(Streams::TraceDebug, Common::Format("startFreqIndex = ${1}, endFreqIndex = ${2}") % *start % *end);
}

/// Frequency of the first in-band bin. Half the bandwidth is a whole number of MHz.
double CLmnSA::BandStart() const {
    const int half = m_Bandwidth / 2;
    return m_CenterFreq - half;
}

/// Copies `length` bins around the middle of `src`.
void CLmnSA::GetInBandBuffer(const double* src, double** dst, int length) {
    TRACE_SCOPE("CLmnSA::GetInBandBuffer");
    std::copy_n(src + m_NumOfBins / 2 - length / 2, length, *dst);
}

/// The first of the largest elements as (frequency, power).
void CLmnSA::CalculateMaxPoint(std::pair<double, double>& out, const double* buffer, int length, double startFreq,
                               double baseIndex, double step) {
    TRACE_SCOPE("CLmnSA::CalculateMaxPoint");
    int best = 0;
    for (int k = 1; k < length; ++k)
        if (buffer[k] > buffer[best]) best = k;
    out = {(best + baseIndex) * step + startFreq, buffer[best]};
    TRACE(Streams::TraceDebug, Common::Format("Peak is found: freq = ${1}, power = ${2}") % out.first % out.second);
}

/// The buffer that the peak search looks at, or null when the chain has none.
const double* CLmnSA::PeakSource(int chain) {
    if (!BuffersFit()) return nullptr;
    if (GetProperty(LmnSAProperty::MaxHold))
        return m_ChannelIndex < static_cast<std::uint32_t>(m_LastNumOfChannels) ? ChannelBuffer(m_MaxHold, chain)
                                                                                : nullptr;
    return GetProperty(LmnSAProperty::Average) ? m_Average[chain]->val : m_Spectrum[chain]->val;
}

void CLmnSA::FindMaxPoints() {
    TRACE_SCOPE("CLmnSA::FindMaxPoints");
    int start = 0;
    int end = 0;
    CalculateFreqIndices(m_Bandwidth, m_SampleRate, m_NumOfBins, &start, &end);
    const int lastSlice = end - 3 * SliceWidth(m_WindowSize) - start;
    const int inBandLen = WholeWithin(m_NumOfBins / (m_SampleRate / m_Bandwidth), static_cast<int>(m_NumOfBins));
    std::vector<double> inBand(static_cast<std::size_t>(inBandLen));
    std::array<std::unique_ptr<PeakList>, MaxChains> peaks;
    for (int c = 0; c < std::min<int>(m_NumChains, MaxChains); ++c) {
        peaks[c] = std::make_unique<PeakList>();
        const double* const source = PeakSource(c);
        if (!source || inBandLen == 0) continue;
        double* destination = inBand.data();
        GetInBandBuffer(source, &destination, inBandLen);
        FindChainPeaks(inBand.data(), inBandLen, lastSlice, *peaks[c]);
    }
    m_buffers->peaks = std::move(peaks);
    for (int c = 0; c < MaxChains; ++c)
        m_buffers->peakPointers[c] = m_buffers->peaks[c].get();
    m_Peaks = m_buffers->peakPointers.data();
}

/// Slides three adjacent slices of m_WindowSize bins over the band: where the middle one's mean is above both others',
/// its largest bin is a peak. A band too narrow for the slices yields its largest bin.
/// @param lastSlice  the last start of the three slices; 0 or less for a narrow band
void CLmnSA::FindChainPeaks(const double* inBand, int inBandLen, int lastSlice, PeakList& peaks) {
    constexpr const char* traceFunctionName = "CLmnSA::FindMaxPoints";  // a step of it
    const double startFreq = BandStart();
    const double step = m_RBW / 1000.0;
    const int window = SliceWidth(m_WindowSize);
    std::pair<double, double> peak;
    const int last = std::min(lastSlice, inBandLen - 3 * window);  // the band's length is rounded on its own
    if (lastSlice <= 0 || last < 0) {
        CalculateMaxPoint(peak, inBand, inBandLen, startFreq, 0.0, step);
        peaks.push_back(peak);
        return;
    }
    // The three means at a position are the means of three starts, so each start's mean is computed once.
    std::vector<double> means(static_cast<std::size_t>(last + 2 * window + 1));
    SlidingAverages(inBand, static_cast<int>(means.size()), means.data());
    for (int i = 0; i <= last;) {
        const double centre = means[i + window];
        if (centre > means[i] && centre > means[i + 2 * window]) {
            CalculateMaxPoint(peak, inBand + i + window, window, startFreq, i + window, step);
            peaks.push_back(peak);
            TRACE(Streams::TraceDebug, "Incrementing the index of the 3 slices by the selected window size");
            i += window;
        } else {
            TRACE(Streams::TraceDebug, "Incrementing the index of the 3 slices by 1");
            ++i;
        }
    }
    peaks.sort([](const auto& a, const auto& b) { return a.second > b.second; });
}

/// CalculateAverage of the slice that begins at each of `length` positions. Sums of neighbouring positions are formed
/// side by side, each in the order in which CalculateAverage adds, so that the results are the same to the last bit.
void CLmnSA::SlidingAverages(const double* buffer, int length, double* averages) {
    static constexpr int Side = 8;
    const int window = SliceWidth(m_WindowSize);
    int first = 0;
    for (; first + Side <= length; first += Side) {
        double sums[Side] = {};
        for (int k = 0; k < window; ++k)
            for (int lane = 0; lane < Side; ++lane)
                sums[lane] += buffer[first + lane + k];
        for (int lane = 0; lane < Side; ++lane)
            averages[first + lane] = sums[lane] / window;
    }
    for (; first < length; ++first)
        averages[first] = CalculateAverage(buffer + first, window);
}

/// A bin's power in dB, whether the spectrum has been through LinearToLog or not.
double CLmnSA::SpurPower(int chain, unsigned bin) {
    const double value = m_Spectrum[chain]->val[bin];
    if (!m_buffers->chains[chain].spectrumIsLinear) return value;
    return 10.0 * std::log10(value) - m_Gain[chain];
}

std::list<SpurRecord> CLmnSA::GetSpurByRBW() {
    TRACE_SCOPE("CLmnSA::GetSpurByRBW");
    int start = 0;
    int end = 0;
    CalculateFreqIndices(m_Bandwidth, m_SampleRate, m_NumOfBins, &start, &end);
    std::list<SpurRecord> candidatesA;
    std::list<SpurRecord> candidatesB;
    const int chains = BuffersFit() ? m_NumChains : 0;
    for (int c = 0; c < chains; ++c) {
        const std::string name = m_ChainName != "AB" ? m_ChainName : c == 0 ? "A" : "B";
        double frequency = BandStart();
        for (int k = start; k < end; ++k, frequency += m_RBW / 1000.0) {
            SpurRecord record{m_Channel, 0, frequency, name, SpurPower(c, static_cast<unsigned>(k)), 0.0};
            if (name == "A")
                candidatesA.push_back(std::move(record));
            else if (name == "B")
                candidatesB.push_back(std::move(record));
        }
    }
    std::list<SpurRecord> spurs;
    for (const auto* candidates : {&candidatesA, &candidatesB})
        if (!candidates->empty()) CheckSpurs(*candidates, spurs);
    return spurs;
}

void CLmnSA::CheckSpurs(const std::list<SpurRecord>& candidates, std::list<SpurRecord>& spurs) {
    TRACE_SCOPE("CLmnSA::CheckSpurs");
    static constexpr int Reach = 3;  // neighbours looked at on each side
    static constexpr double LeastPowerDb = -109.0;
    static constexpr double LeastExcessDb = 10.0;
    const std::vector<SpurRecord> records(candidates.begin(), candidates.end());
    const int count = static_cast<int>(records.size());
    for (int i = 0; i < count; ++i) {
        double sum = 0.0;
        int neighbours = 0;
        for (int j = std::max(i - Reach, 0); j <= std::min(i + Reach, count - 1); ++j) {
            if (j == i) continue;
            sum += records[j].power;
            ++neighbours;
        }
        const double mean = neighbours > 0 ? sum / neighbours : records[i].power;
        if (!(records[i].power > LeastPowerDb && records[i].power - mean > LeastExcessDb)) continue;
        spurs.push_back(records[i]);
        spurs.back().neighbourAverage = mean;
    }
}

}  // namespace LumenSpectrumAnalyzer
