// What the engine holds, fetched once for whoever writes it out. Every fetch copies: the engine may go on afterwards.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "LumenSA.h"
#include "Support/ChainBuffers.h"

/// The sizes behind the last sweep.
struct SweepReadout {
    std::uint32_t bins = 0;
    std::uint32_t samples = 0;
    int histogramBuckets = LumenSpectrumAnalyzer::CLmnSA::HistogramBuckets;
    std::uint32_t sweepLength = 0;  ///< samples, padded to a power of two
};

/// ADC codes of the last sweep.
struct IQReadout {
    ChainBuffers i;
    ChainBuffers q;
};

/// Counts of ADC codes, 20 a chain, and the range that they share.
struct HistogramReadout {
    ChainBuffers both;
    ChainBuffers i;
    ChainBuffers q;
    std::vector<std::pair<double, double>> ranges;  ///< minimum and maximum of each chain
};

/// (frequency in MHz, power in dB) of each chain's peaks, strongest first.
using PeaksReadout = std::vector<LumenSpectrumAnalyzer::PeakList>;

/// Exceptions of the engine pass: pointers to Utilities::Exception before the first sweep.
class Readouts {
public:
    explicit Readouts(LumenSpectrumAnalyzer::CLmnSA& engine) : m_engine(engine) {}

    SweepReadout Sweep() const;
    // dB in each bin, lowest frequency first.
    ChainBuffers Spectrum() const;
    ChainBuffers MaxHold() const;
    ChainBuffers ChannelAverage() const;
    IQReadout IQ() const;
    HistogramReadout Histogram() const;
    PeaksReadout Peaks() const;
    /// Channel power in dB. Any chain but "B" is the engine's first; a sweep of one chain holds it there too.
    double ChannelPower(std::string_view chain) const;

private:
    using BinsOf = void (LumenSpectrumAnalyzer::CLmnSA::*)(double**);
    ChainBuffers Bins(BinsOf fetch) const;
    std::size_t Chains() const { return static_cast<std::size_t>(m_engine.m_NumChains); }

    LumenSpectrumAnalyzer::CLmnSA& m_engine;
};
