// Channel power, max hold, average, the burn-in figures and the histogram. The sweeps are one block of 128 samples: 40
// MHz at 312.5 kHz, a band of 20 MHz being the bins within 32 of the centre.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "EngineHelp.h"
#include "Kelp.h"

namespace {

struct Power : testing::Test {
    Power() { Tune(engine, 40, 312.5, 20); }
    void Feed(const Codes& codes) { Measure(engine, codes); }
    double Read(int bin) { return At(engine, bin); }
    CLmnSA engine;
};

TEST_F(Power, ChannelPowerIsTheTotalOverTheBandOnBothSidesOfTheCentre) {
    engine.SetFileGain(7);
    for (const auto& [bin, inBand] : {std::pair{5, true}, {32, true}, {-32, true}, {33, false}, {-33, false}}) {
        Feed(ToneSweep(1000, bin));
        double total = 0;
        for (int k = -32; k <= 32; ++k)
            total += std::pow(10, Read(k) / 10);
        EXPECT_NEAR(engine.GetChannelPowerPerChain(0), 10 * std::log10(total), 1e-9) << bin;
        EXPECT_EQ(engine.GetChannelPowerPerChain(0) > 52.9, inBand) << bin;
    }
    engine.m_Bandwidth = 40;  // as wide as the spectrum: its outermost bin lies on either side, and counts twice
    Feed(ToneSweep(1000, -64));
    EXPECT_NEAR(engine.GetChannelPowerPerChain(0), 53 + 10 * std::log10(2), 1e-3);
}

TEST_F(Power, DeembeddingTakesTheNoiseFloorOffAPowerAboveIt) {
    engine.m_Band = 1;
    Feed(ToneSweep(1000, 4));
    engine.SetFileGain(engine.GetChannelPowerPerChain(0) - 40);  // channel power is now 40 dB
    for (const auto& [deembed, floor, expected] :
         {std::tuple{false, 30, 40.0}, {true, 30, 10 * std::log10(9000)}, {true, 41, 40.0}, {true, -90, 40.0}}) {
        engine.SetBandNoiseFloor(1, floor);
        engine.SetProperty(LmnSAProperty::PowerDeembedding, deembed);
        engine.UpdateFromLastSweep();
        EXPECT_NEAR(engine.GetChannelPowerPerChain(0), expected, 1e-6) << floor;
    }
    EXPECT_EQ(ThrownValue([&] { engine.SetBandNoiseFloor(3, -90); }), "Band is not supported");
}

TEST_F(Power, MaxHoldKeepsTheStrongestOfEachBinForEachChannelAndIsPreferredForPower) {
    engine.SetProperty(LmnSAProperty::MaxHold, true);
    engine.SetProperty(LmnSAProperty::Average, true);
    for (const auto& [amplitude, bin] : {std::pair{1000, 3}, {1000, -7}, {10, 3}})
        Feed(ToneSweep(amplitude, bin));
    std::vector<double> held(128);
    double* out[] = {held.data()};
    engine.UpdateMaxHold(out);
    for (const int bin : {3, -7})
        EXPECT_NEAR(held[64 + bin], 60, 0.01);
    EXPECT_NEAR(engine.GetChannelPowerPerChain(0), 60 + 10 * std::log10(2), 0.01);
    engine.m_ChannelIndex = 1;
    engine.UpdateMaxHold(out);
    EXPECT_EQ(held, std::vector<double>(128, -KELP_MAXABS_64F));
    engine.MaxHoldClear();
    for (const double cleared : {engine.m_MaxHold[0][0]->val[64 + 3], engine.m_ChannelPowerMaxHold[0][0]->val[3]})
        EXPECT_EQ(cleared, -KELP_MAXABS_64F);
}

TEST_F(Power, TheRunningAverageWeighsByTheCallersCounter) {
    engine.SetProperty(LmnSAProperty::Average, true);
    double decibels = 0, linear = 0;
    for (unsigned n = 0; n < 4; ++n) {
        engine.SetChannelAverageCounterPerChain(0, n);
        Feed(ToneSweep(100 * (n + 1), 9));
        decibels += Read(9) / 4;
        linear += std::pow(10, Read(9) / 10) / 4;
    }
    EXPECT_EQ(engine.m_ChannelAverageCounter[0], 3u);
    EXPECT_NEAR(engine.m_Average[0]->val[64 + 9], decibels, 1e-9);
    EXPECT_NEAR(engine.m_ChannelPowerAverage[0]->val[9], linear, 1e-9 * linear);
    EXPECT_NEAR(engine.GetChannelPowerPerChain(0), 10 * std::log10(linear), 0.01);
    engine.SetChannelAverageCounterPerChain(0, 0);  // starts anew
    engine.UpdateFromLastSweep();
    EXPECT_NEAR(engine.m_Average[0]->val[64 + 9], Read(9), 1e-12);
    engine.AverageClear();
    EXPECT_EQ(engine.m_Average[0]->val[64 + 9], 0);
    EXPECT_EQ(engine.m_ChannelPowerAverage[0]->val[9], 0);
}

TEST_F(Power, TheBurnInFiguresLeaveOutKnownSpikesAndNeverDivideByZero) {
    engine.m_CenterFreq = 2410;  // the band begins at 2400, a multiple of 60
    engine.SetVesperTestInProgress(true);
    engine.SetChannelPowerPerChain(0, -1.5);
    const auto noisyTone = [](int bin) {
        Codes codes = ToneSweep(1000, bin);
        for (int n = 0; n < 128; ++n)
            codes.i[0][n] += n * n * 7 % 13 - 6;
        return codes;
    };
    Feed(noisyTone(-32));  // on the spike
    const double* const band = engine.m_Spectrum[0]->val + 32;
    EXPECT_NEAR(engine.GetChannelAverageVesper(0), std::accumulate(band + 1, band + 64, 0.0) / 63, 1e-9);
    EXPECT_EQ(engine.GetChannelPeakVesper(0), std::max(*std::max_element(band + 1, band + 64), Read(-64)));
    Feed(noisyTone(-31));
    EXPECT_NEAR(engine.GetChannelPeakVesper(0), 60, 0.01);
    EXPECT_EQ(engine.GetChannelPeakFreqVesper(0), 2400.3125);
    EXPECT_EQ(engine.GetChannelPowerPerChain(0), -1.5) << "no channel power while the test runs";

    engine.m_Bandwidth = 320;  // no bins in band
    engine.UpdateFromLastSweep();
    EXPECT_TRUE(engine.GetChannelAverageVesper(0) == Read(-64) && engine.GetChannelPeakVesper(0) == Read(-64));
    EXPECT_EQ(engine.GetChannelPeakFreqVesper(0), 2410 - 160);

    engine.SetIsBRK(true);  // values stay linear until LinearToLog
    engine.UpdateFromLastSweep();
    EXPECT_NEAR(Read(-31), 1e6, 2000);
    engine.LinearToLog(engine.m_Spectrum[0]->val, 0);
    EXPECT_NEAR(Read(-31), 60, 0.01);
    for (const auto& getter :
         {&CLmnSA::GetChannelAverageVesper, &CLmnSA::GetChannelPeakVesper, &CLmnSA::GetChannelPeakFreqVesper})
        for (const unsigned chain : {3u, 4u})
            EXPECT_EQ(ThrownValue([&] { (engine.*getter)(chain); }),
                      "Chain number " + std::to_string(chain) + " is invalid");
}

TEST_F(Power, TwentyBucketsSpanTheRangeOfIAndQTogether) {
    engine.SetProperty(LmnSAProperty::Histogram, true);
    Codes codes(128);
    for (int n = 0; n < 128; ++n) {
        codes.i[0][n] = n % 2 ? 10 : -10;
        codes.q[0][n] = n % 4 < 2 ? 9 : -9;
    }
    std::vector<double> both(20), ofI(20), ofQ(20);
    double* outs[] = {both.data(), ofI.data(), ofQ.data()};
    std::pair<double, double> range;
    Feed(codes);
    engine.UpdateHistogram(outs, outs + 1, outs + 2, &range);
    EXPECT_EQ(range, (std::pair{-10.0, 10.0}));
    for (int b = 0; b < 20; ++b) {  // one code a bucket, but for the last, which takes 10 too
        EXPECT_EQ(ofI[b], b == 0 || b == 19 ? 64 : 0) << b;
        EXPECT_EQ(ofQ[b], b == 1 || b == 19 ? 64 : 0) << b;
        EXPECT_EQ(both[b], ofI[b] + ofQ[b]) << b;
    }
    codes.i[0].assign(128, 3);  // flat: DC is taken off, all values are 0
    codes.q[0].assign(128, 3);
    Feed(codes);
    engine.UpdateHistogram(outs, outs + 1, outs + 2, &range);
    EXPECT_TRUE(range == std::pair(0.0, 0.0) && both[0] == 256);
}

}  // namespace
