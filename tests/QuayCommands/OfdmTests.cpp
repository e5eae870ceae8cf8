// The frames are 802.11 OFDM: found by their structure, as a receiver would.
#include "TestRadio.h"

#include <numeric>
#include <set>

#include "Air/Scene/Ofdm.h"

using namespace radiotest;

namespace {

/// One access point alone, far above the noise, heard on its own channel.
Samples OneNetwork(const Tuning& tuning, const std::string& fields) {
    const char* bands[] = {"2.4", "5.2", "6-7"};
    const auto text = "{\"noise_figure_db\": 0, \"accessPoints\": [{\"band\": \"" + std::string(bands[tuning.band]) +
                      "\", \"channel\": " + std::to_string(tuning.channel) +
                      ", \"width_mhz\": " + std::to_string(20 << tuning.bandwidth) + ", \"level_dbm\": -50" + fields +
                      "}]}";
    UseScene(text);
    return Capture(tuning).at(0);
}

/// Where a frame begins of which `us` microseconds follow: the first sample above a share of the mean amplitude, after
/// 2 us of silence; the end when there is none.
std::size_t FirstFrame(const Samples& x, const Tuning& tuning, double share, double us) {
    const double rate = RateMhz(tuning.bandwidth);
    const double threshold = share * std::pow(10.0, (-50 + GainDb(tuning, "A")) / 20);
    double quiet = 0;
    for (std::size_t n = 0; static_cast<double>(n) + us * rate < static_cast<double>(x.size()); ++n) {
        const bool isLoud = std::abs(x[n]) >= threshold;
        if (isLoud && quiet >= 2 * rate) return n;
        quiet = isLoud ? 0 : quiet + 1;
    }
    return x.size();
}

/// Likeness of a stretch and the one `lag` later, 1 for equal.
double Likeness(const Samples& x, std::size_t first, std::size_t lag, std::size_t count) {
    std::complex<double> product;
    double power = 0.0;
    for (std::size_t n = first; n < first + count; ++n) {
        product += x[n] * std::conj(x[n + lag]);
        power += std::norm(x[n]) / 2.0 + std::norm(x[n + lag]) / 2.0;
    }
    return product.real() / power;
}

TEST(Ofdm, FramesOpenWithTheTwoTrainingFieldsAndHaveACyclicPrefixInEachSymbol) {
    for (const auto& tuning :
         {Tuning{0, 0, 6}, Tuning{1, 1, 38}, Tuning{1, 2, 42}, Tuning{1, 3, 50}, Tuning{2, 4, 63}}) {
        const auto x = OneNetwork(tuning, R"(, "duty": 0.5, "frames": [{"length_us": 60}])");
        const double rate = RateMhz(tuning.bandwidth);
        const auto us = [&](double time) { return static_cast<std::size_t>(std::lround(time * rate)); };
        const auto start = FirstFrame(x, tuning, 0.4, 60);
        ASSERT_LT(start, x.size());
        // 8 us short training with a period of 0.8 us: 16 samples at 20 MHz.
        EXPECT_GT(Likeness(x, start + 2, us(0.8), us(7.1)), 0.99) << rate;
        EXPECT_LT(std::fabs(Likeness(x, start + 2, us(0.4), us(7.1))), 0.9) << rate;
        // 8 us long training: two periods of 3.2 us and half of one before them.
        EXPECT_GT(Likeness(x, start + us(8), us(3.2), us(4.7)), 0.99) << rate;
        EXPECT_LT(std::fabs(Likeness(x, start + us(8), us(1.6), us(4.7))), 0.5) << rate;
        // Each symbol of 4 us repeats its last 0.8 us at its start.
        for (double symbol = 16; symbol < 60; symbol += 4) {
            EXPECT_GT(Likeness(x, start + us(symbol), us(3.2), us(0.7)), 0.9) << rate << " at " << symbol;
            EXPECT_LT(std::fabs(Likeness(x, start + us(symbol + 1), us(2.4), us(0.7))), 0.8) << rate;
        }
    }
}

/// Subcarriers with power in the data of a frame, from the first symbol behind the signal symbol.
std::set<int> HeardSubcarriers(const Samples& x, std::size_t start, double rate) {
    const auto period = static_cast<std::size_t>(std::lround(3.2 * rate));
    const auto body = start + static_cast<std::size_t>(std::lround(20.8 * rate));
    const int half = static_cast<int>(period / 2);
    std::vector<double> powers;
    for (int k = -half + 1; k < half; ++k)
        powers.push_back(std::norm(ToneOf(x, k / static_cast<double>(period), body, period)));
    const double mean = std::accumulate(powers.begin(), powers.end(), 0.0) / static_cast<double>(powers.size());
    std::set<int> heard;
    for (int k = -half + 1; k < half; ++k)
        if (powers[static_cast<std::size_t>(k + half - 1)] > mean / 100.0) heard.insert(k);
    return heard;
}

TEST(Ofdm, DataStandsOnTheSubcarriersOfTheStandard) {
    const auto both = [](std::vector<std::pair<int, int>> ranges) {
        std::set<int> out;
        for (const auto& [from, to] : ranges)
            for (int k = from; k <= to; ++k)
                out.insert({k, -k});
        return out;
    };
    struct Case {
        Tuning tuning;
        std::string fields;
        std::set<int> subcarriers;
    };
    for (const auto& c : {Case{{0, 0, 6}, ", \"legacy\": true", both({{1, 26}})}, Case{{0, 0, 6}, "", both({{1, 28}})},
                          Case{{1, 1, 38}, "", both({{2, 58}})}, Case{{1, 2, 42}, "", both({{2, 122}})},
                          Case{{1, 3, 50}, "", both({{6, 126}, {130, 250}})},
                          Case{{2, 4, 63}, "", both({{6, 126}, {130, 250}, {262, 382}, {386, 506}})}}) {
        const auto x = OneNetwork(c.tuning, c.fields + R"(, "duty": 0.5, "frames": [{"length_us": 60}])");
        const double rate = RateMhz(c.tuning.bandwidth);
        const auto start = FirstFrame(x, c.tuning, 0.1, 24);
        ASSERT_LT(start, x.size());
        EXPECT_EQ(HeardSubcarriers(x, start, rate), c.subcarriers) << 20 * (1 << c.tuning.bandwidth);
    }
}

TEST(Ofdm, TheTrainingFieldsAreThoseOfTheStandardAndHavePowerOne) {
    for (const unsigned width : {20u, 40u, 80u, 160u, 320u}) {
        for (const auto& field : {quayCommand::ShortTraining(width), quayCommand::LongTraining(width)}) {
            double power = 0.0;
            for (const auto& carrier : field)
                power += std::norm(std::complex(carrier.value.re, carrier.value.im));
            EXPECT_NEAR(power, 1.0, 1e-12);
        }
    }
    EXPECT_EQ(quayCommand::LongTraining(20).size(), 52u);
    // The first three samples of each field's period, as IEEE 802.11 lists them in its worked example.
    const auto sampleAt = [](const std::vector<quayCommand::Subcarrier>& field, int n) {
        std::complex<double> sum;
        for (const auto& c : field)
            sum += std::complex(c.value.re, c.value.im) * std::polar(1.0, 2.0 * std::numbers::pi * c.number * n / 64.0);
        return sum * std::sqrt(52.0) / 64.0;
    };
    const std::complex<double> shortList[] = {{0.046, 0.046}, {-0.132, 0.002}, {-0.013, -0.079}};
    const std::complex<double> longList[] = {{0.156, 0.000}, {-0.005, -0.120}, {0.040, -0.111}};
    for (int n = 0; n < 3; ++n) {
        EXPECT_LT(std::abs(sampleAt(quayCommand::ShortTraining(20), n) - shortList[n]), 0.0011) << n;
        EXPECT_LT(std::abs(sampleAt(quayCommand::LongTraining(20), n) - longList[n]), 0.0011) << n;
    }
}

TEST(Ofdm, ANetworkStandsAtItsPlaceInAWiderReceiver) {
    UseScene(R"({"accessPoints": [
        {"band": "5.2", "channel": 36, "width_mhz": 20, "level_dbm": -55, "frames": [{"length_us": 100}]}]})");
    const Tuning tuning{1, 2, 42};  // centre 5210; channel 36 lies 30 MHz below
    const auto x = Capture(tuning).at(0);
    const double gain = GainDb(tuning, "A");
    EXPECT_NEAR(ChannelPowerDb(Retuned(x, -30.0, 80.0), 20.0, 80.0) - gain, -55.0, 0.3);
    EXPECT_LT(ChannelPowerDb(x, 35.0, 80.0) - gain, -70.0) << "the rest of the span has but the sidelobes";
}

TEST(Ofdm, ANetworkBetweenTheReceiversSubcarriersKeepsItsOwn) {
    UseScene(R"({"noise_figure_db": 0, "accessPoints": [{"band": "2.4", "channel": 14, "width_mhz": 20,
        "level_dbm": -50, "legacy": true, "duty": 0.5, "frames": [{"length_us": 60}]}]})");
    const Tuning tuning{0, 0, 13};  // channel 14 lies 12 MHz above, 38.4 subcarriers, its highest at the span's end
    const double rate = RateMhz(tuning.bandwidth);
    const auto x = Retuned(Capture(tuning).at(0), 12.0, rate);
    const auto start = FirstFrame(x, tuning, 0.1, 24);
    ASSERT_LT(start, x.size());
    const auto heard = HeardSubcarriers(x, start, rate);
    EXPECT_TRUE(heard.size() == 48 && !heard.contains(0)) << "those from -26 to 22 and no other";
    EXPECT_TRUE(*heard.begin() == -26 && *heard.rbegin() == 22);
}

TEST(Ofdm, FramesFillTheirShareOfTheTime) {
    for (const double duty : {0.3, 0.6, 1.0}) {
        const auto x = OneNetwork({0, 0, 6}, ", \"duty\": " + std::to_string(duty) +
                                                 R"(, "frames": [{"length_us": 40, "count": 3}, {"length_us": 100}])");
        const double gain = GainDb({0, 0, 6}, "A");
        EXPECT_NEAR(ChannelPowerDb(x, 20.0, 40.0) - gain, -50.0 + Db(duty), 0.5) << duty;
    }
}

}  // namespace
