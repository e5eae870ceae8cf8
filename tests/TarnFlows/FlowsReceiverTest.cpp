// The order of the calls that bring the radio into receive state, and what a failing radio does to them.
#include <iterator>

#include "FlowsTest.h"

namespace {

using Names = std::vector<std::string>;

class FlowsReceiverTest : public FlowsTest {
protected:
    std::ptrdiff_t CountOf(const std::string& name) {
        const Names names = CallNames();
        return std::count(names.begin(), names.end(), name);
    }
};

TEST_F(FlowsReceiverTest, AResetSelectsTheMacThenTunesThenStopsTheCalibrations) {
    Start();
    Run("-reset_config");
    const Names calls = Calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0], "SetLmac 0");
    // channel 1, band 0, mode 13, antennas, chain, reserved, bandwidth, second bandwidth, 64-bit zero, selection
    EXPECT_EQ(calls[1].substr(0, 33), "ConfigTxRx 1 0 13 3 1 0 0 0 0 0 3");
    EXPECT_EQ(calls[2], "StartStopAllPeriodicCalibrations");
}

TEST_F(FlowsReceiverTest, ATriggerTunesToTheSettingsAndTheCaptureGetsItsChain) {
    Start();
    Run("-band 6-7 -bandwidth 320 -channel 63 -chain AB -internal_gain 3 -preLNA_resistor true -trigger_now");
    const Names calls = Calls();
    ASSERT_EQ(calls.size(), 10u);
    EXPECT_EQ(calls[0], "SetCaptureMode 1");
    EXPECT_EQ(calls[2], "SetLmac 2");
    EXPECT_EQ(calls[3].substr(0, 30), "ConfigTxRx 63 2 13 3 3 0 4 0 0");
    EXPECT_EQ(calls[5], "SetManualGainC 1 0 0 0 3 1 0 0 0 0 3 1 0 0 0");
    EXPECT_EQ(calls[7].substr(0, 27), "SetCaptureDescriptorD 1 3 0");
    EXPECT_EQ(calls[9], "SetCaptureMode 0");
    EXPECT_EQ(Engine().m_NumChains, 2);
}

struct FaultCase {
    const char* faults;
    Names calls;  ///< of "-reset_config", without StartStopAllPeriodicCalibrations
    std::int32_t exitCode;
};

TEST_F(FlowsReceiverTest, AFailedSetUpIsTriedOnceMoreBehindOneReset) {
    // Init brings the radio up with call 1; the reset that is looked at makes call 2 and perhaps 3.
    const FaultCase cases[] = {
        {"SetLmac:2", {"SetLmac", "ResetAdapter", "SetLmac", "ConfigTxRx"}, 0},
        {"SetLmac:2:std", {"SetLmac", "ResetAdapter", "SetLmac", "ConfigTxRx"}, 0},
        {"ConfigTxRx:2:quay", {"SetLmac", "ConfigTxRx", "ResetAdapter", "SetLmac", "ConfigTxRx"}, 0},
        {"SetLmac:2,SetLmac:3", {"SetLmac", "ResetAdapter", "SetLmac"}, 0},
        {"SetLmac:2,SetLmac:3:quay", {"SetLmac", "ResetAdapter", "SetLmac"}, 258},
        {"SetLmac:2,SetLmac:3:std", {"SetLmac", "ResetAdapter", "SetLmac"}, 258},
        {"SetLmac:2,ResetAdapter:1", {"SetLmac", "ResetAdapter", "SetLmac", "ConfigTxRx"}, 0},
        {"SetLmac:2,ResetAdapter:1:std", {"SetLmac", "ResetAdapter"}, 258},
    };
    for (const FaultCase& fault : cases) {
        SCOPED_TRACE(fault.faults);
        Start("", fault.faults);
        EXPECT_EQ(Run("-reset_config").exitCode, fault.exitCode);
        Names names = CallNames();
        std::erase(names, "StartStopAllPeriodicCalibrations");
        EXPECT_EQ(names, fault.calls);
        EXPECT_EQ(Run("-reset_config").exitCode, 0);  // no lock was left behind
    }
}

TEST_F(FlowsReceiverTest, AResetThatFailsHalfWayLeavesTheChannels) {
    Start("", "IsChannelSupported:207");  // Init asks 206 times
    EXPECT_EQ(Run("-reset_config").exitCode, 258);
    EXPECT_EQ(Run("-band 5.2 -bandwidth 20 -channel 36").exitCode, 0);
}

TEST_F(FlowsReceiverTest, ARadioThatNeverComesUpIsCapturedAllTheSame) {
    Start();
    Run("-trigger_now");
    Place("", "SetLmac:*");
    m_flows->Init();
    ForgetCalls();
    Run("-trigger_now");
    EXPECT_EQ(CountOf("SetLmac"), 2);
    EXPECT_EQ(CountOf("ResetAdapter"), 1);
    EXPECT_EQ(CountOf("ReadCaptureEx"), 1);
}

TEST_F(FlowsReceiverTest, AResetGivesTheDefaultsAndALookAtTheDefaultGainFile) {
    Start();
    const Answer answer = Run("-band 6-7 -channel 37 -chain B -trigger_now -rbw 312.5");
    ASSERT_EQ(answer.exitCode, 0);
    ForgetCalls();
    EXPECT_EQ(Output("-reset_config"), MissingGainFile());
    EXPECT_EQ(Calls().at(1).substr(0, 23), "ConfigTxRx 1 0 13 3 1 0");  // channel, band, mode, antennas, chain
    EXPECT_EQ(Engine().m_CenterFreq, 2412.0);
    EXPECT_EQ(Engine().m_Bandwidth, 20);
    EXPECT_EQ(Engine().m_SampleRate, 40.0);
    EXPECT_EQ(Engine().m_ChainName, "A");
    EXPECT_EQ(Engine().m_RBW, 312.5);  // no part of the defaults
}

TEST_F(FlowsReceiverTest, AResetListensAndMeasuresOnTheSameChainOnACardWithoutAnAntennaOfItsOwn) {
    Start("hw=12,card=3");
    Run("-chain B -trigger_now");
    ForgetCalls();
    Run("-reset_config");
    EXPECT_EQ(Calls().at(1).substr(0, 21), "ConfigTxRx 1 0 13 1 1");
}

TEST_F(FlowsReceiverTest, ARepeatedResetKeepsTheChannelListsAsLongAsTheyWere) {
    Start();
    const std::string once = Output("-get_supported_config");
    Run("-reset_config");
    EXPECT_EQ(Output("-get_supported_config"), once);
    EXPECT_EQ(Engine().m_NumOfChannels, 15);  // 14 channels and the placeholder
}

TEST_F(FlowsReceiverTest, CardsAndHardwareDecideTablesAndAntennas) {
    struct Row {
        const char* adapter;
        std::size_t tables;
        std::uint32_t antennas, chain, selection;
    };
    // Tables: 2 for 2.4 GHz; 2 more for 5.2 GHz; 80, then 160 MHz; four of 6-7 GHz; 320 MHz.
    for (const Row& row :
         {Row{"hw=26,card=4", 11, 3, 1, 3}, Row{"hw=30,card=4", 10, 3, 1, 3}, Row{"hw=26,card=64", 10, 1, 1, 0},
          Row{"hw=26,card=1", 11, 1, 1, 3}, Row{"hw=26,card=2", 7, 1, 1, 3}, Row{"hw=16,card=0", 6, 1, 1, 1},
          Row{"hw=5,card=0", 4, 2, 2, 2}, Row{"hw=12,card=3", 2, 1, 1, 0}}) {
        SCOPED_TRACE(row.adapter);
        Start(row.adapter);
        std::set<std::pair<std::string, std::size_t>> tables;  // a line is "(36,HB),1,1,1,0,0"
        for (const std::string& line : Lines(Output("-get_supported_config")))
            for (std::size_t width = 0, flags = line.find(')'); flags != line.npos && width < 5; ++width)
                if (line[flags + 2 + 2 * width] == '1') tables.emplace(line.substr(line.find(',') + 1, 2), width);
        EXPECT_EQ(tables.size(), row.tables);
        ForgetCalls();
        Run("-reset_config");
        std::istringstream tuning(Calls().at(1));
        std::vector<std::string> words{std::istream_iterator<std::string>(tuning), {}};
        EXPECT_EQ(words.at(4), std::to_string(row.antennas));
        EXPECT_EQ(words.at(5), std::to_string(row.chain));
        EXPECT_EQ(words.at(11), std::to_string(row.selection));
    }
}

TEST_F(FlowsReceiverTest, AChainWithoutAnAntennaIsRefused) {
    Start("antennas=1");
    EXPECT_EQ(Output("-chain B"), "ERROR:Chain B is not valid\n");
    EXPECT_EQ(Output("-chain AB"), "ERROR:Chain AB is not valid\n");
    EXPECT_EQ(Run("-chain A").exitCode, 0);
}

// What the next trigger clears, by its log: max hold, average; and whether the engine rebuilds.
TEST_F(FlowsReceiverTest, ASettingMarksWhatChangesAndNothingWhenItDoesNot) {
    struct Row {
        const char* line;
        const char* marks;  ///< letters: m max hold, a average, r rebuild
    };
    const Row rows[] = {
        {"-band 2.4 -bandwidth 20 -channel 1 -chain A -rbw 39.0625", ""},
        {"-channel 6", "m"},
        {"-band 5.2 -channel 36", "mar"},
        {"-band 5", ""},
        {"-channel 40", "m"},
        {"-bandwidth 40 -channel 38", "mar"},
        {"-chain B", ""},
        {"-rbw 156.25", "mar"},
        {"-rbw 156.25", ""},
        {"-maxhold true", "m"},
        {"-maxhold true", ""},
        {"-maxhold false", ""},
        {"-channel_average true", "a"},
        {"-channel_average true", ""},
        {"-channel_average false", ""},
    };
    Start("samples=2048");
    ASSERT_EQ(Run("-trigger_now").exitCode, 0);
    const auto clears = [&](const std::string& operation) {
        const auto log = Lines(Read("log.txt"));
        return std::ranges::count_if(log, [&](const std::string& line) {
            return line.find(operation) != line.npos && line.ends_with(">Enter");
        });
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        const auto maxHold = clears("::ClearMaxHold"), average = clears("::ClearAverage");
        ASSERT_EQ(Run(row.line).exitCode, 0);
        const bool rebuilds = Engine().m_isInit;
        Run("-trigger_now");
        const std::string marks = std::string(clears("::ClearMaxHold") > maxHold ? "m" : "") +
                                  (clears("::ClearAverage") > average ? "a" : "") + (rebuilds ? "r" : "");
        EXPECT_EQ(marks, row.marks);
    }
    const auto average = clears("::ClearAverage");
    Run("-reset_first_run_flags");
    Run("-band 5");  // equal values count again
    Run("-trigger_now");
    EXPECT_GT(clears("::ClearAverage"), average);
}

TEST_F(FlowsReceiverTest, TheSampleRateFollowsHardwareAndBandwidth) {
    struct Row {
        const char* adapter;
        double rates[5];
    };
    for (const Row& row : {Row{"hw=7", {80, 80, 80, 0, 0}}, Row{"hw=11", {40, 40, 80, 160, 320}},
                           Row{"hw=30", {40, 40, 80, 160, 320}}, Row{"hw=8", {0, 0, 0, 0, 0}}}) {
        Start(row.adapter);
        for (int k = 0; k < 5; ++k) {
            const std::string band = k < 2 ? "2.4" : k < 4 ? "5" : "6-7";
            Run("-bandwidth " + std::to_string(20 << k) + " -band " + band);
            EXPECT_EQ(Engine().m_SampleRate, row.rates[k]) << row.adapter << " " << (20 << k);
        }
    }
}

}  // namespace
