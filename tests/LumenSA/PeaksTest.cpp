// In-band indices, the peak search and the spur check.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "EngineHelp.h"

namespace {

/// An engine with buffers but no sweep, all bins of chain 0 at `level`.
void Flat(CLmnSA& engine, double sampleRate, double rbw, int bandwidth, double level = -100) {
    Tune(engine, sampleRate, rbw, bandwidth, 5200);
    engine.m_NumChains = 1;
    engine.PrepareBuffers();
    std::fill_n(engine.m_Spectrum[0]->val, engine.m_NumOfBins, level);
}

PeakList Found(CLmnSA& engine) {
    engine.FindMaxPoints();
    PeakList lists[3];
    engine.UpdatePeaksData(lists);
    return lists[0];
}

/// The search as one would do it by hand: three slices, three means, step by step.
PeakList SearchByHand(const std::vector<double>& band, int window, int lastStart, double startFreq, double step) {
    const auto mean = [&](int first) {
        return std::accumulate(band.begin() + first, band.begin() + first + window, 0.0) / window;
    };
    std::vector<std::pair<double, double>> peaks;
    for (int i = 0; i <= lastStart; ++i) {
        if (mean(i + window) <= mean(i) || mean(i + window) <= mean(i + 2 * window)) continue;
        const auto first = band.begin() + i + window;
        const auto best = std::max_element(first, first + window);
        peaks.emplace_back(static_cast<double>(best - band.begin()) * step + startFreq, *best);
        i += window - 1;
    }
    std::stable_sort(peaks.begin(), peaks.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    return {peaks.begin(), peaks.end()};
}

TEST(Peaks, TheBandsIndicesFollowFromItsShareOfTheSampleRate) {
    CLmnSA engine;
    const std::tuple<int, double, unsigned, int, int> cases[] = {
        {20, 40, 1024, 256, 768},  {20, 80, 512, 192, 320},      {40, 40, 1024, 0, 1024},   {80, 80, 2048, 0, 2048},
        {160, 160, 4096, 0, 4096}, {160, 320, 8192, 2048, 6144}, {20, 160, 1001, 437, 562}, {320, 320, 8192, 0, 0},
        {0, 40, 1024, 0, 0},       {30, 40, 1024, 0, 0},         {160, 40, 1024, 0, 1024},  {20, 0, 1024, 0, 0},
        {20, NAN, 1024, 0, 0}};
    for (const auto& [bandwidth, rate, bins, first, last] : cases) {
        int start = -1, end = -1;
        engine.CalculateFreqIndices(bandwidth, rate, bins, &start, &end);
        EXPECT_EQ(std::pair(start, end), std::pair(first, last)) << bandwidth << " of " << rate;
    }
}

TEST(Peaks, ASingleStrongBinIsFoundOnceAtItsFrequency) {
    CLmnSA engine;
    Flat(engine, 40, 39.0625, 20);
    EXPECT_TRUE(Found(engine).empty()) << "a flat band has no peak";
    engine.m_Spectrum[0]->val[512 + 64] = -60;
    EXPECT_EQ(Found(engine), (PeakList{{5202.5, -60}}));
    engine.m_Spectrum[0]->val[512 + 67] = -60;  // an equal one in the same slice: the lower frequency wins
    EXPECT_EQ(Found(engine).front(), (std::pair{5202.5, -60.0}));
    engine.m_Spectrum[0]->val[512 + 67] = -100;
    engine.m_Spectrum[0]->val[512 - 64] = -50;
    engine.m_Spectrum[0]->val[300] = -60;
    engine.m_Spectrum[0]->val[100] = 0;  // out of band
    EXPECT_EQ(Found(engine), (PeakList{{5197.5, -50}, {5190 + 44 * 0.0390625, -60}, {5202.5, -60}}))
        << "equal powers by frequency";
    PeakList kept[3] = {{{1, 2}}};
    engine.UpdatePeaksData(kept);
    EXPECT_EQ(kept[0].size(), 4u) << "the caller's pairs stay";
}

TEST(Peaks, ANarrowBandOrOneWithoutIndicesYieldsItsLargestBin) {
    CLmnSA narrow;
    Flat(narrow, 160, 312.5, 20);  // 64 bins in band
    narrow.m_WindowSize = 22;
    narrow.m_Spectrum[0]->val[256 + 3] = -70;
    narrow.m_Spectrum[0]->val[256 + 9] = -70;
    EXPECT_EQ(Found(narrow), (PeakList{{5200 + 3 * 0.3125, -70}}));
    CLmnSA wide;
    Flat(wide, 320, 312.5, 320);
    wide.m_Spectrum[0]->val[1] = -3;
    EXPECT_EQ(Found(wide), (PeakList{{5040.3125, -3}}));
    for (const int size : {0, -5, 1 << 30}) {
        wide.m_WindowSize = size;
        EXPECT_EQ(Found(wide).size(), 1u);
    }
}

TEST(Peaks, TheSearchEqualsTheSearchByHandToTheLastBitInAllThreeBuffers) {
    std::mt19937 random(7);
    std::normal_distribution<double> normal(-100, 6);
    for (const int window : {1, 5, 10, 37, 80})
        for (const auto& [rate, rbw, bandwidth] :
             {std::tuple{320.0, 39.0625, 160}, {160.0, 39.0625, 160}, {40.0, 312.5, 40}, {80.0, 78.125, 20}}) {
            CLmnSA engine;
            Flat(engine, rate, rbw, bandwidth);
            engine.m_WindowSize = window;
            int start = 0, end = 0;
            engine.CalculateFreqIndices(bandwidth, rate, engine.m_NumOfBins, &start, &end);
            if (end - start - 3 * window <= 0) continue;
            const std::pair<double*, LmnSAProperty> sources[] = {
                {engine.m_Spectrum[0]->val, LmnSAProperty::Histogram},  // a switch that plays no part
                {engine.m_Average[0]->val, LmnSAProperty::Average},
                {engine.m_MaxHold[0][0]->val, LmnSAProperty::MaxHold}};
            for (const auto& [values, property] : sources) {
                std::generate_n(values, engine.m_NumOfBins, [&] { return normal(random); });
                engine.SetProperty(property, true);
                const std::vector<double> band(values + start, values + end);
                EXPECT_EQ(Found(engine),
                          SearchByHand(band, window, end - start - 3 * window, 5200 - bandwidth / 2, rbw / 1000));
            }
        }
}

TEST(Peaks, ASpurStandsMoreThanTenAboveItsNeighboursAndAboveTheFloor) {
    CLmnSA engine;
    // The powers of neighbours, and the spurs among them, each with its neighbours' mean. Nothing at the floor or ten
    // above exactly; three neighbours at the edge.
    using Pairs = std::vector<std::pair<double, double>>;
    const std::pair<std::vector<double>, Pairs> cases[] = {
        {{-120, -120, -120, -108.5, -120, -120, -120}, {{-108.5, -120}}},
        {{-120, -120, -120, -109, -120, -120, -120}, {}},
        {{-60, -60, -60, -50, -60, -60, -60}, {}},
        {{-60, -60, -60, -49.5, -60, -60, -60}, {{-49.5, -60}}},
        {{-40, -60, -61, -62, 0, -60}, {{-40, -61}, {0, -60.75}}},
        {{-50}, {}},
        {{NAN, -50, NAN}, {}},
        {{}, {}}};
    for (const auto& [powers, expected] : cases) {
        std::list<SpurRecord> candidates, spurs;
        for (const double power : powers)
            candidates.push_back({36, 0, 5180, "A", power, 0});
        engine.CheckSpurs(candidates, spurs);
        Pairs found;
        for (const SpurRecord& spur : spurs)
            found.emplace_back(spur.power, spur.neighbourAverage);
        EXPECT_EQ(found, expected) << testing::PrintToString(powers);
    }
}

TEST(Peaks, SpursCarryDecibelsWhetherTheSpectrumWasLeftLinearOrNot) {
    Codes codes = ToneSweep(1000, 20, 4096);
    AddTone(codes, 1, 100, 21, 128);
    for (const bool linear : {false, true}) {
        CLmnSA engine;
        Tune(engine, 40, 312.5, 20);
        engine.m_ChainName = "AB";
        engine.m_Channel = 36;
        engine.m_Gain = {30, 10, 0};
        engine.SetVesperTestInProgress(linear);
        engine.SetIsBRK(linear);
        Measure(engine, codes, 2);
        for (const SpurRecord& tone :
             {SpurRecord{36, 0, 5186.25, "A", 60 - 30, 0}, {36, 0, 5186.5625, "B", 40 - 10, 0}}) {
            const std::list<SpurRecord> spurs = engine.GetSpurByRBW();
            EXPECT_EQ(std::count_if(spurs.begin(), spurs.end(),
                                    [&](const SpurRecord& spur) {
                                        return spur.chain == tone.chain && spur.frequency == tone.frequency &&
                                               spur.channel == tone.channel && std::abs(spur.power - tone.power) < 0.01;
                                    }),
                      1)
                << tone.chain << (linear ? " linear" : " dB");
        }
        engine.m_ChainName = "C";
        EXPECT_TRUE(engine.GetSpurByRBW().empty());
    }
}

}  // namespace
