// Intake: truncation, trimming, DC, rebuilds.
#include <gtest/gtest.h>

#include "EngineHelp.h"
#include "Kelp.h"

namespace {

struct Sweep : testing::Test {
    Sweep() { Tune(engine, 40, 312.5, 20); }
    CLmnSA engine;
};

TEST_F(Sweep, CodesAreCutTowardZeroToTheirLow16BitsInEveryForm) {
    Codes codes(8);
    // Pairs of opposite sign, so that the mean, and with it the DC, is zero.
    codes.i[0] = {1.9, -1.9, 70000, -70000, NAN, 0, 32767, -32767};
    codes.q[0] = {-0.99, 0.99, 65535, -65535, 4294967298.0, -4294967298.0, 1, -1};
    codes.AddTo(engine);
    const double expected[][2] = {{1, 0}, {-1, 0}, {4464, -1}, {-4464, 1}, {0, 2}, {0, -2}, {32767, 1}, {-32767, -1}};
    for (int n = 0; n < 8; ++n) {
        const double* const pair = engine.m_CurrSweep[0]->val + 2 * n;
        EXPECT_TRUE(engine.m_ISweep[0]->val[n] == expected[n][0] && engine.m_QSweep[0]->val[n] == expected[n][1]) << n;
        EXPECT_TRUE(pair[0] == expected[n][0] && pair[1] == expected[n][1]) << n;
        EXPECT_EQ(engine.m_Chain[0][n].I, expected[n][0]) << n;
    }
    for (int n = 8; n < 18; ++n)
        EXPECT_EQ(engine.m_Chain[0][n].I | engine.m_Chain[0][n].Q, 0) << n;
}

TEST_F(Sweep, TheZeroPaddingIsCutAndZerosInsideStay) {
    Codes codes(4096);
    codes.i[0][10] = 4000;
    codes.q[0][3999] = 1;  // either part counts
    codes.AddTo(engine);
    EXPECT_EQ(engine.m_NumOfSamples, 4000u);
    EXPECT_EQ(engine.m_SweepLen, 4096u);
    EXPECT_EQ(engine.m_NumOfSubBuffers, 4000u / 128);
    for (const auto& [length, power] : {std::pair{1u, 1u}, {2u, 2u}, {3u, 4u}, {4097u, 8192u}, {8192u, 8192u}}) {
        Codes one(length);
        one.q[0][0] = 1;
        one.AddTo(engine);
        EXPECT_EQ(engine.m_SweepLen, power) << length;
    }
}

TEST_F(Sweep, OnlyTheWholePartOfTheMeanIsTakenOffAndAShorterChainIsPadded) {
    Codes codes(20);
    for (int n = 0; n < 10; ++n) {
        codes.i[0][n] = n == 0 ? 2 : 3;           // mean 2.9
        codes.q[0][n] = n == 0 ? -2 : -3;         // mean -2.9
        codes.i[1][n] = n == 0 ? -32768 : 32000;  // mean 25523.2: the subtraction wraps
        codes.i[2][n] = codes.i[2][n + 5] = n + 1;
    }
    codes.AddTo(engine, 3);
    EXPECT_EQ(engine.m_NumOfSamples, 15u) << "of the last chain";
    for (int n = 0; n < 15; ++n) {
        EXPECT_EQ(engine.m_ISweep[0]->val[n], n == 0 ? 0 : n < 10 ? 1 : 0) << n;
        EXPECT_EQ(engine.m_QSweep[0]->val[n], n == 0 ? 0 : n < 10 ? -1 : 0) << n;
        EXPECT_EQ(engine.m_ISweep[1]->val[n], n == 0 ? 65536 - 32768 - 25523 : n < 10 ? 32000 - 25523 : 0) << n;
    }
}

TEST_F(Sweep, AnEmptyChainIsRefusedAndTheEngineStaysAsItWas) {
    Codes codes(256);
    codes.i[0][5] = 1;
    EXPECT_EQ(ThrownPointer([&] { codes.AddTo(engine, 2); }), "Received empty ADC Samples.");
    EXPECT_TRUE(engine.m_isInit);
    EXPECT_EQ(engine.m_Spectrum[0]->val, nullptr);
    EXPECT_EQ(engine.m_Chain[0][5].I, 1);
    EXPECT_EQ(ThrownPointer([&] { Codes(0).AddTo(engine); }), "Received empty ADC Samples.");
    Measure(engine, ToneSweep(100, 5));
    codes.i[0][200] = 1;
    EXPECT_EQ(ThrownPointer([&] { codes.AddTo(engine, 2); }), "Received empty ADC Samples.");
    EXPECT_TRUE(engine.m_NumOfSamples == 128 && engine.m_SweepLen == 128) << "of the sweep before";
    EXPECT_NEAR(engine.m_ISweep[0]->val[0], 100, 1);
    EXPECT_NEAR(At(engine, 5), 40.0, 0.01);
    EXPECT_NE(ThrownPointer([&] { codes.AddTo(engine, 4); }), NothingThrown);
    EXPECT_NE(ThrownPointer([&] { engine.AddSweep(nullptr, nullptr, 16, 1); }), NothingThrown);
}

TEST_F(Sweep, MaxHoldAndAverageSurviveEqualSettingsAndALongerSweepButNoRebuild) {
    ToneSweep(100, 5, 1024).AddTo(engine);
    EXPECT_EQ(engine.m_MaxHold[0][1]->val[7], -KELP_MAXABS_64F);
    engine.m_MaxHold[0][1]->val[7] = 3;
    engine.m_Average[0]->val[7] = 4;
    for (const unsigned length : {1024u, 5000u, 500u, 5000u}) {
        Measure(engine, ToneSweep(100, 5, length));
        EXPECT_EQ(engine.m_NumOfSubBuffers, length / 128);
        EXPECT_NEAR(At(engine, 5), 40.0, 0.01) << length;
        EXPECT_EQ(engine.m_MaxHold[0][1]->val[7] + engine.m_Average[0]->val[7], 3 + 4);
    }
    Codes two = ToneSweep(100, 5, 1024);
    AddTone(two, 1, 100, 5, 128);
    two.AddTo(engine, 2);  // another number of chains
    EXPECT_EQ(engine.m_MaxHold[0][1]->val[7], -KELP_MAXABS_64F);
    EXPECT_EQ(engine.m_ChannelPowerMaxHold[1][0]->val[127], -KELP_MAXABS_64F);
    EXPECT_EQ(engine.m_Average[0]->val[7], 0);
}

}  // namespace
