// What stands at the antenna is what an analyser reads.
#include "TestRadio.h"

#include <algorithm>

#include "Air/Scene/Random.h"

using namespace radiotest;

namespace {

TEST(Levels, AToneReadsItsLevelAtEveryGainAndOnEveryChannelOfTheDefaultAdapter) {
    // First, some middle and the last channel of each table; the engine's correction differs from channel to channel.
    struct Case {
        std::uint32_t band, bandwidth;
        std::vector<std::uint32_t> channels;
        double startMhz;
    };
    const std::vector<Case> cases{
        {0, 0, {1, 3, 4, 5, 6, 13}, 2407}, {0, 1, {3, 7, 11}, 2407}, {1, 0, {36, 100, 144, 149, 181}, 5000},
        {1, 1, {38, 142, 175}, 5000},      {1, 2, {42, 155}, 5000},  {1, 3, {50, 163}, 5000},
        {2, 0, {1, 69, 233}, 5950},        {2, 1, {3, 227}, 5950},   {2, 2, {7, 215}, 5950},
        {2, 3, {15, 207}, 5950},           {2, 4, {31, 191}, 5950},
    };
    for (const auto& c : cases)
        for (const auto channel : c.channels) {
            UseScene(Tone(c.startMhz + 5.0 * channel + 2.5, -60), "samples=4096");
            for (std::uint32_t gain = 0; gain <= 5; ++gain)
                for (std::uint32_t preLna = 0; preLna <= 1; ++preLna) {
                    const Tuning tuning{c.band, c.bandwidth, channel, 3, preLna, gain};
                    const auto chains = Capture(tuning);
                    ASSERT_EQ(chains.size(), 2u);
                    for (const std::size_t chain : {0u, 1u})
                        EXPECT_NEAR(ToneDbm(chains[chain], 2.5, tuning, chain == 0 ? "A" : "B"), -60.0, 0.5)
                            << c.band << " " << c.bandwidth << " " << channel << " gain " << gain << preLna;
                }
        }
}

TEST(Levels, AToneHasTheAmplitudeOfTheHandWorkedGain) {
    // Chain A, 2.4 GHz, channel 6: 124 + 0.0401 * 6 - 1.9574 = 122.2832 dB, so -60 dBm are 10^(62.2832 / 20) codes.
    UseScene(Tone(2439.5, -60));
    const auto x = Capture({}).at(0);
    EXPECT_NEAR(std::abs(ToneOf(x, 2.5 / 40.0, 0, x.size())), 1300.65, 3.0);
}

TEST(Levels, ASingleChainBUsesTheGainOfChainB) {
    UseScene(R"({"chain_offsets_db": [0, -7],
        "tones": [{"frequency_mhz": 2439.5, "level_dbm": -60, "chain_offsets_db": [1, 2]}]})");
    EXPECT_NEAR(ToneDbm(Capture({0, 0, 6, 1}).at(0), 2.5, {}, "A"), -59.0, 0.2);
    EXPECT_NEAR(ToneDbm(Capture({0, 0, 6, 2}).at(0), 2.5, {}, "B"), -65.0, 0.2);
}

TEST(Levels, TheNoiseFloorIsThermalNoiseAndTheFigureAtEachRateAndGain) {
    UseScene(R"({"noise_figure_db": [6, 9]})");
    for (const std::uint32_t bandwidth : {0u, 2u, 4u}) {
        for (const std::uint32_t internalGain : {0u, 5u}) {
            const Tuning tuning{2, bandwidth, bandwidth == 0 ? 1u : bandwidth == 2 ? 7u : 31u, 3, 0, internalGain};
            const auto chains = Capture(tuning);
            for (const std::size_t chain : {0u, 1u}) {
                const double power = PowerDb(chains.at(chain), 0, chains[chain].size());
                const double expected = -174.0 + Db(RateMhz(bandwidth) * 1e6) + (chain == 0 ? 6.0 : 9.0);
                EXPECT_NEAR(power - GainDb(tuning, chain == 0 ? "A" : "B"), expected, 0.2) << bandwidth;
            }
            // Independent receivers: no common part beyond chance.
            std::complex<double> common;
            double own = 0.0;
            for (std::size_t n = 0; n < chains[0].size(); ++n) {
                common += chains[0][n] * std::conj(chains[1][n]);
                own += std::abs(chains[0][n]) * std::abs(chains[1][n]);
            }
            EXPECT_LT(std::abs(common), 0.02 * own);
        }
    }
}

TEST(Levels, NoiseIsNormalInItsMomentsAndItsTail) {
    std::vector<double> x(1000000);
    quayCommand::Random random(3);
    quayCommand::AddNormal(random, 2.0, x);
    const auto count = static_cast<double>(x.size());
    std::vector<double> moments(5);
    for (const double value : x)
        for (std::size_t k = 1; k <= 4; ++k)
            moments[k] += std::pow(value / 2.0, static_cast<double>(k)) / count;
    EXPECT_NEAR(moments[1], 0.0, 0.005);
    EXPECT_NEAR(moments[2], 1.0, 0.007);
    EXPECT_NEAR(moments[3], 0.0, 0.02);
    EXPECT_NEAR(moments[4], 3.0, 0.05);
    // Shares beyond a limit, from the error function; the last one lies in the tail behind the tables.
    for (const double limit : {0.25, 1.0, 2.0, 3.0, 3.7}) {
        const auto beyond = std::count_if(x.begin(), x.end(), [&](double v) { return v > 2.0 * limit; });
        const double expected = count * 0.5 * std::erfc(limit / std::numbers::sqrt2);
        EXPECT_NEAR(static_cast<double>(beyond), expected, 4.0 * std::sqrt(expected)) << limit;
    }
}

TEST(Levels, CodesClipAtSixteenBits) {
    UseScene(Tone(2439.5, -20));
    double low = 0.0, high = 0.0;
    const auto samples = Capture({}).at(0);
    for (const auto& x : samples) {
        low = std::min({low, x.real(), x.imag()});
        high = std::max({high, x.real(), x.imag()});
        ASSERT_EQ(x.real(), std::round(x.real()));
    }
    EXPECT_EQ(low, -32768.0);
    EXPECT_EQ(high, 32767.0);
}

TEST(Levels, WhatLiesBeyondTheSpanIsNotFoldedIn) {
    // All around a receiver that spans 2417 to 2457 MHz, and strong.
    UseScene(R"({
        "tones": [{"frequency_mhz": 2416.9, "level_dbm": -50}, {"frequency_mhz": 2458, "level_dbm": -50}],
        "combs": [{"fundamental_mhz": 100, "level_dbm": -40, "rolloff_db_per_decade": 0},
                  {"fundamental_mhz": 617, "level_dbm": -40, "spread_percent": 0.4, "rolloff_db_per_decade": 0}],
        "accessPoints": [{"band": "5.2", "channel": 36, "width_mhz": 20, "level_dbm": -40},
                         {"band": "2.4", "channel": 14, "width_mhz": 20, "level_dbm": -40}],
        "noise": [{"points": [{"mhz": 2300, "dbm_per_mhz": -60}, {"mhz": 2416, "dbm_per_mhz": -60}]}]})",
             "samples=16384");
    EXPECT_NEAR(ChannelPowerDb(Capture({}).at(0), 40.0, 40.0) - GainDb({}, "A"), -91.0, 0.5);
}

TEST(Levels, ANetworksSkirtsAreNotFoldedToTheFarSideOfTheSpan) {
    // Channel 9 reaches over the lower end of what channel 13's receiver spans: its skirts lie below, not above.
    UseScene(R"({"noise_figure_db": 0, "accessPoints": [
        {"band": "2.4", "channel": 9, "width_mhz": 20, "level_dbm": -40}]})");
    const Tuning tuning{0, 0, 13};
    const auto x = Capture(tuning).at(0);
    const auto densityDbm = [&](double lowMhz, double highMhz) {
        constexpr int Places = 25;
        double power = 0.0;
        for (int k = 0; k < Places; ++k)
            power += std::norm(ToneOf(x, (lowMhz + (highMhz - lowMhz) * k / Places) / 40.0, 0, x.size())) / Places;
        return Db(power * static_cast<double>(x.size()) / 40.0) - GainDb(tuning, "A");  // in a MHz
    };
    EXPECT_GT(densityDbm(-18.0, -13.0), -55.0);
    EXPECT_LT(densityDbm(-3.0, 3.0), -90.0);
    EXPECT_LT(densityDbm(16.0, 20.0), -80.0);
}

TEST(Levels, AnAccessPointInPartOfTheSpanKeepsOnlyThatPart) {
    UseScene(R"({"accessPoints": [{"band": "5.2", "channel": 50, "width_mhz": 160, "level_dbm": -50}]})");
    // Channel 36 spans 5160 to 5200 MHz of the 5170 to 5330: 20 MHz in the channel are an eighth of the power.
    const Tuning narrow{1, 0, 36};
    EXPECT_NEAR(ChannelPowerDb(Capture(narrow).at(0), 20.0, 40.0) - GainDb(narrow, "A"), -59.0, 0.6);
    const Tuning wide{1, 3, 50};
    EXPECT_NEAR(ChannelPowerDb(Capture(wide).at(0), 160.0, 160.0) - GainDb(wide, "A"), -50.0, 0.2);
}

TEST(Levels, HarmonicsFallOffByDecadesAndKeepTheirPowerWhenSpread) {
    UseScene(R"({"combs": [{"fundamental_mhz": 10, "level_dbm": -20, "rolloff_db_per_decade": 20}]})");
    const auto x = Capture({}).at(0);  // 2417 to 2457 MHz: harmonics 242 to 245
    for (const int harmonic : {242, 243, 244, 245})
        EXPECT_NEAR(ToneDbm(x, harmonic * 10.0 - 2437.0, {}), -20.0 - 20.0 * std::log10(harmonic), 0.2) << harmonic;

    UseScene(R"({"combs": [{"fundamental_mhz": 270, "level_dbm": -60,
        "level_harmonic": 9, "spread_percent": 0.5, "modulation_khz": 31.5}]})");
    const Tuning four{0, 0, 4};  // centre 2427; the harmonic sweeps from 2417.85 to 2430
    const auto spread = Capture(four).at(0);
    EXPECT_NEAR(ChannelPowerDb(spread, 20.0, 40.0) - GainDb(four, "A"), -60.0, 0.5);
    EXPECT_LT(ToneDbm(spread, 3.0, four), -70.0) << "no line is left at the top of the sweep";
    // Even in frequency: around its middle, 2423.925, half of the sweep's 12.15 MHz holds half of the power.
    EXPECT_NEAR(ChannelPowerDb(Retuned(spread, -3.075, 40.0), 6.075, 40.0) - GainDb(four, "A"), -63.0, 0.6);
}

TEST(Levels, ShapedNoiseHasItsDensityInItsPlace) {
    UseScene(R"({"noise": [{"points": [{"mhz": 2427, "dbm_per_mhz": -80}, {"mhz": 2447, "dbm_per_mhz": -80}]}]})");
    const auto x = Capture({}).at(0);
    const double gain = GainDb({}, "A");
    EXPECT_NEAR(ChannelPowerDb(x, 40.0, 40.0) - gain, -67.0, 0.2);
    EXPECT_NEAR(ChannelPowerDb(x, 10.0, 40.0) - gain, -69.85, 0.3);  // 33 bins of 0.3125 MHz
    // As strong in each stretch of the capture: no trace of the blocks it is made of.
    for (std::size_t first = 0; first + 8192 <= x.size(); first += 8192)
        EXPECT_NEAR(PowerDb(x, first, 8192) - gain, -67.0, 0.5) << first;
}

}  // namespace
