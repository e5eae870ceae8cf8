// Settings, calls and orders of calls that a careless caller can come up with.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <limits>
#include <thread>

#include "EngineHelp.h"

namespace {

/// The lock is recursive, so only another thread can tell.
bool LockIsFree(CLmnSA& engine) {
    const auto done = std::make_shared<std::promise<void>>();
    std::thread([&engine, done] {
        const SyncObjectsOSAL::Entered lock(*engine.m_pThreadSync);
        done->set_value();
    }).detach();
    return done->get_future().wait_for(std::chrono::seconds(5)) == std::future_status::ready;
}

TEST(Safety, SettingsThatGiveNoTransformReleaseAllAndLeaveTheLock) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::tuple<double, double, int> settings[] = {
        {0, 39.0625, 1}, {40, 0, 1},     {NAN, 39.0625, 1}, {40, NAN, 1},   {infinity, 39.0625, 1}, {-40, 39.0625, 1},
        {40, 100, 1},    {40, 40000, 1}, {1e12, 1, 1},      {40, 312.5, 0}, {40, 312.5, -1},        {40, 312.5, 4}};
    for (const auto& [rate, rbw, chains] : settings) {
        SCOPED_TRACE(std::to_string(rate) + "/" + std::to_string(rbw) + "/" + std::to_string(chains));
        CLmnSA engine;
        Tune(engine, 40, 312.5, 20);
        ToneSweep(100, 5, 1024).AddTo(engine);
        ASSERT_NE(engine.m_Spectrum[0]->val, nullptr);
        engine.m_SampleRate = rate;
        engine.m_RBW = rbw;
        EXPECT_FALSE(engine.Realloc(chains));
        EXPECT_TRUE(LockIsFree(engine));
        for (const auto* views : {&engine.m_CurrSweep, &engine.m_ISweep, &engine.m_QSweep, &engine.m_Spectrum,
                                  &engine.m_Histogram, &engine.m_Average, &engine.m_ChannelPowerAverage})
            EXPECT_EQ((*views)[0]->val, nullptr);
        EXPECT_EQ(engine.m_MaxHold[0], nullptr);
        EXPECT_EQ(engine.m_pFFTSpec, nullptr);
        EXPECT_EQ(engine.m_LastNumOfChannels, 0);
        EXPECT_EQ(ThrownValue([&] { engine.UpdateFromLastSweep(); }), "No sweep has been taken yet");
        EXPECT_NO_THROW(engine.MaxHoldClear());
        EXPECT_NO_THROW(engine.FindMaxPoints());
        EXPECT_TRUE(engine.GetSpurByRBW().empty());
        if (chains != 1) continue;
        engine.m_isInit = true;
        EXPECT_NE(ThrownPointer([&] { ToneSweep(100, 5, 1024).AddTo(engine); }), NothingThrown);
        EXPECT_TRUE(engine.m_isInit);
        Tune(engine, 40, 312.5, 20);  // and it recovers
        Measure(engine, ToneSweep(100, 5, 1024));
        EXPECT_NEAR(At(engine, 5), 40, 0.01);
    }
}

TEST(Safety, PrepareBuffersMakesZeroedBuffersThatTakeStoredValues) {
    CLmnSA engine;
    Tune(engine, 160, 39.0625, 160);
    engine.m_NumChains = 2;
    engine.m_NumOfSamples = 10000;
    engine.PrepareBuffers();
    EXPECT_EQ(engine.GetNumOfBins(), 4096u);
    EXPECT_EQ(engine.m_NumOfSubBuffers, 2u);
    EXPECT_EQ(engine.m_MaxHold[1][1]->val[4095] + engine.m_CurrSweep[1]->val[19999], 0);
    EXPECT_EQ(engine.m_CurrSweep[2]->val, nullptr);
    std::vector<double> a(4096, 1.5), b(4096, -2);
    double* in[] = {a.data(), b.data()};
    engine.m_ChannelIndex = 1;
    engine.SaveMaxHold(in);
    engine.SaveSpectrum(in);
    engine.SaveChannelAverage(in);
    EXPECT_EQ(engine.m_MaxHold[1][1]->val[7], -2);
    EXPECT_EQ(engine.m_MaxHold[1][0]->val[7], 0) << "the current channel only";
    EXPECT_EQ(engine.m_Spectrum[0]->val[4095], 1.5);
    EXPECT_EQ(engine.m_Average[1]->val[0], -2);
    engine.m_NumOfChannels = 1;
    engine.PrepareBuffers();
    EXPECT_EQ(engine.m_LastNumOfChannels, 1);
}

TEST(Safety, CopiesBeforeASweepOrBeyondTheBuffersThrowAndTouchNothing) {
    std::vector<double> room(100000, 1.25);
    double* out[] = {room.data(), room.data(), room.data()};
    std::pair<double, double> range[3];
    CLmnSA engine;
    // clang-format off
    const std::function<void()> copies[] = {
        [&] { engine.UpdateSpectrum(out); }, [&] { engine.UpdateMaxHold(out); },
        [&] { engine.UpdateChannelAverage(out); }, [&] { engine.UpdateIQ(out, out); },
        [&] { engine.UpdateHistogram(out, out, out, range); }, [&] { engine.SaveSpectrum(out); },
        [&] { engine.SaveMaxHold(out); }, [&] { engine.SaveChannelAverage(out); },
        [&] { engine.SaveHistogram(out, out, out, range); }};
    // clang-format on
    for (const auto& copy : copies)
        EXPECT_EQ(ThrownValue(copy), "No sweep has been taken yet");
    PeakList peaks[3];
    EXPECT_NO_THROW(engine.UpdatePeaksData(peaks));
    Tune(engine, 40, 312.5, 20);
    ToneSweep(100, 5, 1024).AddTo(engine);
    engine.m_NumChains = 3;  // as a stored setting might
    for (const auto& copy : copies)
        EXPECT_EQ(ThrownValue(copy), "The engine's buffers don't fit its settings");
    EXPECT_EQ(room, std::vector<double>(100000, 1.25));
    ToneSweep(100, 5, 1024).AddTo(engine, 1);
    engine.m_NumOfSamples = 100000;
    EXPECT_NE(ThrownValue([&] { engine.UpdateIQ(out, out); }), NothingThrown);
    EXPECT_NE(ThrownValue([&] { engine.DumpIQ("/nowhere/at/all.txt"); }), NothingThrown);
    EXPECT_NE(ThrownValue([&] { engine.UpdateFromLastSweep(); }), NothingThrown);
}

TEST(Safety, ASweepShorterThanOneTransformAndABadChannelIndexAreRefused) {
    CLmnSA engine;
    Tune(engine, 40, 312.5, 20);
    Measure(engine, ToneSweep(100, 5));
    EXPECT_EQ(ThrownPointer([&] { Measure(engine, ToneSweep(100, 5, 127)); }),
              "A sweep of 127 samples is too short for 128 bins");
    EXPECT_TRUE(std::isnan(At(engine, 5)) && std::isnan(engine.GetChannelPowerPerChain(0))) << "not the sweep's before";
    EXPECT_NO_THROW(Measure(engine, ToneSweep(100, 5)));
    engine.m_ChannelIndex = 2;
    std::vector<double> room(128);
    double* out[] = {room.data()};
    const std::string text = "Channel index 2 has no max hold buffer: there are 2";
    EXPECT_EQ(ThrownValue([&] { engine.UpdateMaxHold(out); }), text);
    EXPECT_EQ(ThrownValue([&] { engine.SaveMaxHold(out); }), text);
    EXPECT_EQ(ThrownValue([&] { engine.DumpMaxHold("/nowhere/at/all.txt"); }), text);
    EXPECT_NO_THROW(engine.UpdateFromLastSweep()) << "max hold is off";
    engine.SetProperty(LmnSAProperty::MaxHold, true);
    EXPECT_EQ(ThrownValue([&] { engine.UpdateFromLastSweep(); }), text);
    EXPECT_NO_THROW(engine.FindMaxPoints());
    EXPECT_TRUE(engine.m_Peaks[0]->empty());
    engine.m_ChannelIndex = 0;
    engine.m_Band = 3;
    EXPECT_EQ(ThrownValue([&] { engine.UpdateFromLastSweep(); }), "Band is not supported");
    for (const int chain : {-1, 3}) {
        EXPECT_NE(ThrownValue([&] { engine.SetChannelPowerPerChain(chain, 1); }), NothingThrown);
        EXPECT_NE(ThrownValue([&] { engine.SetChannelAverageCounterPerChain(chain, 1); }), NothingThrown);
        EXPECT_NE(ThrownValue([&] { engine.LinearToLog(room.data(), chain); }), NothingThrown);
    }
}

TEST(Safety, OnlyTheFivePropertiesExistAndAllStartOff) {
    CLmnSA engine;
    for (int value = 0; value < 5; ++value) {
        const auto property = static_cast<LmnSAProperty>(value);
        EXPECT_FALSE(engine.GetProperty(property));
        engine.SetProperty(property, true);
        EXPECT_TRUE(engine.GetProperty(property));
    }
    for (const int value : {-1, 5}) {
        const auto property = static_cast<LmnSAProperty>(value);
        EXPECT_EQ(ThrownPointer([&] { engine.GetProperty(property); }), "Illegal property value.");
        EXPECT_EQ(ThrownPointer([&] { engine.SetProperty(property, true); }), "Illegal property value.");
    }
    EXPECT_EQ(engine.m_Properties.size(), 5u);
}

}  // namespace
