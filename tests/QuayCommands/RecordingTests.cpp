// A capture tells what its samples really are, or why there are none.
#include "TestRadio.h"

#include <limits>

#include "Air/Air.h"

using namespace radiotest;

namespace {

TEST(Recordings, TellWhatTheirSamplesAre) {
    const Folder folder;
    UseScene(R"({"tones": [{"frequency_mhz": 2437, "level_dbm": -30}, {"frequency_mhz": 5180, "level_dbm": -70}]})",
             "samples=4096");
    auto loud = quayCommand::RecordCapture({{0, 0, 6}, 3});
    auto quiet = quayCommand::RecordCapture({{1, 1, 38}, 2});
    ASSERT_TRUE(loud && quiet);
    EXPECT_EQ(loud->facts.centreMhz, 2437.0);
    EXPECT_EQ(loud->facts.sampleRateMhz, 40.0);
    EXPECT_EQ(quiet->facts.centreMhz, 5190.0);
    EXPECT_EQ(quiet->facts.startUs - loud->facts.startUs, 100000.0);
    ASSERT_EQ(quiet->chains.size(), 1u);
    EXPECT_EQ(quiet->chains[0].chain, 1u);
    EXPECT_EQ(quiet->facts.chains[0].overloadedSamples, 0u);
    for (const auto& chain : {loud->facts.chains[0], loud->facts.chains[1]}) {
        EXPECT_GT(chain.overloadedSamples, 1000u);
        EXPECT_TRUE(chain.isGainKnown);
        EXPECT_EQ(chain.samples, 4096u);
    }
    UseRadio("samples=2048", "file:" + folder.Write("stored.txt", "1 ,2\n-32768 ,4\n"));
    auto stored = quayCommand::RecordCapture({{0, 0, 6}, 1});
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->facts.chains[0].samples, 2u);
    EXPECT_EQ(stored->facts.chains[0].overloadedSamples, 1u);
    EXPECT_FALSE(stored->facts.chains[0].isGainKnown);
}

TEST(Recordings, SayWhyThereIsNone) {
    UseRadio("antennas=1", "sim:quiet");
    EXPECT_EQ(quayCommand::RecordCapture({{0, 0, 6}, 2}).Reason(),
              "the radio captured nothing: a selected chain has no antenna");
    EXPECT_EQ(quayCommand::CaptureTrouble(), "a selected chain has no antenna");
    EXPECT_TRUE(Capture({0, 0, 6, 3}).empty());
    EXPECT_TRUE(quayCommand::RecordCapture({{0, 0, 6}, 1}));
    EXPECT_FALSE(quayCommand::CaptureTrouble());
    ASSERT_FALSE(quayCommand::SetUpRadio({"bands=0", "sim:quiet", "", "SetLmac:1,IsBandEnabled:1:quay"}));
    EXPECT_EQ(quayCommand::RecordCapture({{0, 0, 6}, 1}).Reason(),
              "the radio failed: simulated fault at call 1 of SetLmac");
    EXPECT_TRUE(quayCommand::ReceivesChannel({0, 0, 6}).IsRefused());
    EXPECT_TRUE(quayCommand::ReceivesChannel({0, 0, 6}).Value());
    EXPECT_FALSE(quayCommand::ReceivesChannel({1, 0, 36}).Value());
}

TEST(Recordings, AFailedSetUpLeavesNoSamplesOfTheOldTuning) {
    for (const std::string step : {"SetLmac", "ConfigTxRx", "StartStopAllPeriodicCalibrations", "ResetAdapter", ""}) {
        const bool isReset = step == "ResetAdapter";
        const std::string faults = step.empty() ? "" : step + (isReset ? ":1" : ":2");
        ASSERT_EQ(ReasonOf({"samples=1024", "sim:quiet", "", faults}), "accepted");
        ASSERT_TRUE(quayCommand::RecordCapture({{0, 0, 6}, 1}));
        auto& wifi = *CommandFactory::GetInstance().getWifiInstance();
        if (isReset)
            EXPECT_ANY_THROW(wifi.ResetAdapter());
        else if (step.empty())  // the reset succeeds, and the receiver is untuned all the same
            wifi.ResetAdapter();
        else
            EXPECT_TRUE(quayCommand::RecordCapture({{0, 0, 11}, 1}).IsRefused());
        std::vector<double> v(1024);
        double* p[1] = {v.data()};
        EXPECT_FALSE(wifi.GetAdcObject()->ReadCapture({}, p, p)) << step;
        EXPECT_EQ(quayCommand::CaptureTrouble(), "the receiver isn't tuned, or its set-up failed");
        EXPECT_TRUE(quayCommand::RecordCapture({{0, 0, 11}, 1})) << step;
    }
}

/// An air that gives other samples than it is asked for.
class WrongAir : public quayCommand::IAir {
public:
    std::string Describe() const override { return "wrong"; }
    quayCommand::AirAbilities Abilities() const override { return {{2400, 2500}, {20, 80}, 1}; }
    OSAL::Outcome<quayCommand::CaptureFacts> Capture(const quayCommand::CaptureRequest& request) override {
        request.chains[0].i[0] = 7.0;
        return facts;
    }
    quayCommand::CaptureFacts facts;
};

TEST(Recordings, OtherSamplesThanAskedForAreNeverDelivered) {
    constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
    WrongAir air;
    std::vector<double> i(4), q(4);
    const auto reason = [&](double centre, double rate, unsigned chain, const quayCommand::CaptureFacts& facts) {
        std::ranges::fill(i, 9.0);
        quayCommand::ChainCapture capture{chain, 0.0, i, q};
        air.facts = facts;
        const auto outcome = CaptureAsAsked(air, {centre, rate, 20.0, {&capture, 1}});
        EXPECT_EQ(i[0], outcome ? 7.0 : 0.0);
        return outcome ? "delivered" : outcome.Reason();
    };
    EXPECT_EQ(reason(2437, 40, 0, {2437, 40}), "delivered");
    EXPECT_EQ(reason(2437, 40, 0, {2442, 40}), "the air was heard at 2442 MHz instead of 2437");
    EXPECT_EQ(reason(2437, 40, 0, {NaN, 40}), "the air was heard at nan MHz instead of 2437");
    EXPECT_EQ(reason(2437, 40, 0, {2437, 80}), "the air was sampled at 80 MHz instead of 40");
    EXPECT_EQ(reason(2437, 40, 0, {2437, 40, 0, 3}), "3 sample(s) of the capture were lost");
    EXPECT_EQ(reason(5180, 40, 0, {5180, 40}), "the air can't be tuned to 5180 MHz, only from 2400 to 2500");
    EXPECT_EQ(reason(2437, 160, 0, {2437, 160}), "the air can't deliver 160 MHz, only from 20 to 80");
    EXPECT_EQ(reason(2437, 40, 1, {2437, 40}), "the air has no chain B");
}

}  // namespace
