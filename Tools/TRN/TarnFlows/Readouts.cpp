#include "Readouts.h"

using LumenSpectrumAnalyzer::CLmnSA;

SweepReadout Readouts::Sweep() const {
    return {.bins = m_engine.m_NumOfBins, .samples = m_engine.m_NumOfSamples, .sweepLength = m_engine.m_SweepLen};
}

ChainBuffers Readouts::Bins(BinsOf fetch) const {
    ChainBuffers bins(Chains(), m_engine.GetNumOfBins());
    (m_engine.*fetch)(bins.Pointers());
    return bins;
}

ChainBuffers Readouts::Spectrum() const {
    return Bins(&CLmnSA::UpdateSpectrum);
}

ChainBuffers Readouts::MaxHold() const {
    return Bins(&CLmnSA::UpdateMaxHold);
}

ChainBuffers Readouts::ChannelAverage() const {
    return Bins(&CLmnSA::UpdateChannelAverage);
}

IQReadout Readouts::IQ() const {
    IQReadout codes{{Chains(), m_engine.m_NumOfSamples}, {Chains(), m_engine.m_NumOfSamples}};
    m_engine.UpdateIQ(codes.i.Pointers(), codes.q.Pointers());
    return codes;
}

HistogramReadout Readouts::Histogram() const {
    constexpr auto Buckets = static_cast<std::size_t>(CLmnSA::HistogramBuckets);
    HistogramReadout counts{{Chains(), Buckets},
                            {Chains(), Buckets},
                            {Chains(), Buckets},
                            std::vector<std::pair<double, double>>(Chains())};
    m_engine.UpdateHistogram(counts.both.Pointers(), counts.i.Pointers(), counts.q.Pointers(), counts.ranges.data());
    return counts;
}

PeaksReadout Readouts::Peaks() const {
    PeaksReadout peaks(Chains());
    m_engine.UpdatePeaksData(peaks.data());
    return peaks;
}

double Readouts::ChannelPower(std::string_view chain) const {
    return m_engine.GetChannelPowerPerChain(chain == "B" && m_engine.m_NumChains != 1 ? 1 : 0);
}
