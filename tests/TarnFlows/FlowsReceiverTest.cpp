// The order of the calls that bring the radio into receive state, and what a failing radio does to them.
#include <iterator>

#include "FlowsTest.h"

namespace {

class FlowsReceiverTest : public FlowsTest {};

TEST_F(FlowsReceiverTest, ATriggerTunesToTheSettingsAndTheCaptureGetsItsChain) {
    Start();
    Run("-band 6-7 -bandwidth 320 -channel 63 -chain AB -internal_gain 3 -preLNA_resistor true -trigger_now");
    const Texts calls = Calls();
    ASSERT_EQ(calls.size(), 10u);
    EXPECT_EQ(calls[0], "SetCaptureMode 1");
    EXPECT_EQ(calls[2], "SetLmac 2");
    EXPECT_EQ(calls[3].substr(0, 30), "ConfigTxRx 63 2 13 3 3 0 4 0 0");
    EXPECT_EQ(calls[5], "SetManualGainC 1 0 0 0 3 1 0 0 0 0 3 1 0 0 0");
    EXPECT_EQ(calls[7].substr(0, 27), "SetCaptureDescriptorD 1 3 0");
    EXPECT_EQ(calls[9], "SetCaptureMode 0");
    EXPECT_EQ(Engine().m_NumChains, 2);
}

TEST_F(FlowsReceiverTest, AFailedSetUpIsTriedOnceMoreBehindOneReset) {
    // Init brings the radio up with call 1; the reset that is looked at makes call 2 and perhaps 3.
    for (const auto& [faults, calls, exitCode] :
         {std::tuple{"SetLmac:2", "SetLmac ResetAdapter SetLmac ConfigTxRx ", 0},
          {"SetLmac:2:std", "SetLmac ResetAdapter SetLmac ConfigTxRx ", 0},
          {"ConfigTxRx:2:quay", "SetLmac ConfigTxRx ResetAdapter SetLmac ConfigTxRx ", 0},
          {"SetLmac:2,SetLmac:3", "SetLmac ResetAdapter SetLmac ", 0},
          {"SetLmac:2,SetLmac:3:quay", "SetLmac ResetAdapter SetLmac ", 258},
          {"SetLmac:2,SetLmac:3:std", "SetLmac ResetAdapter SetLmac ", 258},
          {"SetLmac:2,ResetAdapter:1", "SetLmac ResetAdapter SetLmac ConfigTxRx ", 0},
          {"SetLmac:2,ResetAdapter:1:std", "SetLmac ResetAdapter ", 258}}) {
        SCOPED_TRACE(faults);
        Start("", faults);
        EXPECT_EQ(Run("-reset_config").exitCode, exitCode);
        std::string names;
        for (const std::string& name : CallNames())
            if (name != "StartStopAllPeriodicCalibrations") names += name + " ";
        EXPECT_EQ(names, calls);
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
    for (const auto& [name, count] : {std::pair{"SetLmac", 2}, {"ResetAdapter", 1}, {"ReadCaptureEx", 1}})
        EXPECT_EQ(std::ranges::count(CallNames(), name), count) << name;
}

TEST_F(FlowsReceiverTest, AResetSelectsTheMacTunesStopsTheCalibrationsAndGivesTheDefaults) {
    Start();
    const std::string channels = Output("-get_supported_config");
    ASSERT_EQ(Run("-band 6-7 -channel 37 -chain B -trigger_now -rbw 312.5").exitCode, 0);
    ForgetCalls();
    std::string folder;
    OSAL::GetModuleDirectory(folder);
    EXPECT_EQ(Output("-reset_config"), "Failed opening " + folder + "GainCSV.csv file");
    const Texts calls = Calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0], "SetLmac 0");
    // channel 1, band 0, mode 13, antennas, chain, reserved, bandwidth, second bandwidth, 64-bit zero, selection
    EXPECT_EQ(calls[1].substr(0, 33), "ConfigTxRx 1 0 13 3 1 0 0 0 0 0 3");
    EXPECT_EQ(calls[2], "StartStopAllPeriodicCalibrations");
    EXPECT_EQ(Engine().m_CenterFreq, 2412.0);
    EXPECT_EQ(Engine().m_Bandwidth, 20);
    EXPECT_EQ(Engine().m_SampleRate, 40.0);
    EXPECT_EQ(Engine().m_ChainName, "A");
    EXPECT_EQ(Engine().m_RBW, 312.5);                           // no part of the defaults
    const std::string again = Output("-get_supported_config");  // lists as long as they were
    EXPECT_EQ(again.substr(again.find("(1,LB)")), channels.substr(channels.find("(1,LB)")));
    EXPECT_EQ(Engine().m_NumOfChannels, 15);  // 14 channels and the placeholder
}

TEST_F(FlowsReceiverTest, CardsAndHardwareDecideTablesAndAntennas) {
    struct Row {
        const char* adapter;
        std::size_t tables;
        const char* antennas;  ///< mask, chain and selection
    };
    // Tables: 2 for 2.4 GHz; 2 more for 5.2 GHz; 80, then 160 MHz; four of 6-7 GHz; 320 MHz.
    for (const Row& row :
         {Row{"hw=26,card=4", 11, "313"}, Row{"hw=30,card=4", 10, "313"}, Row{"hw=26,card=64", 10, "110"},
          Row{"hw=26,card=1", 11, "113"}, Row{"hw=26,card=2", 7, "113"}, Row{"hw=16,card=0", 6, "111"},
          Row{"hw=5,card=0", 4, "222"}, Row{"hw=12,card=3", 2, "110"}}) {
        SCOPED_TRACE(row.adapter);
        Start(row.adapter);
        std::set<std::pair<std::string, std::size_t>> tables;  // a line is "(36,HB),1,1,1,0,0"
        for (const std::string& line : Lines(Output("-get_supported_config")))
            for (std::size_t width = 0, flags = line.find(')'); flags != line.npos && width < 5; ++width)
                if (line[flags + 2 + 2 * width] == '1') tables.emplace(line.substr(line.find(',') + 1, 2), width);
        EXPECT_EQ(tables.size(), row.tables);
        Run("-chain B -trigger_now");  // which a card without antennas of its own must not keep listening on
        ForgetCalls();
        Run("-reset_config");
        const Texts words = Lines(Calls().at(1), ' ');
        EXPECT_EQ(words.at(4) + words.at(5) + words.at(11), row.antennas);
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
    using Row = std::pair<std::string, std::string>;  // line; marks: m max hold, a average, r rebuild
    const Row rows[] = {{"-band 2.4 -bandwidth 20 -channel 1 -chain A -rbw 39.0625", ""},
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
                        {"-channel_average false", ""}};
    Start("samples=2048");
    ASSERT_EQ(Run("-trigger_now").exitCode, 0);
    const auto clears = [&](const std::string& operation) {
        return std::ranges::count_if(Lines(Read("log.txt")), [&](const std::string& line) {
            return line.find(operation) != line.npos && line.ends_with(">Enter");
        });
    };
    for (const auto& [line, marks] : rows) {
        Streams::AppStreams::OpenLogFile(Path("log.txt"));  // anew
        ASSERT_EQ(Run(line).exitCode, 0);
        const bool rebuilds = Engine().m_isInit;
        Run("-trigger_now");
        EXPECT_EQ(std::string(clears("::ClearMaxHold") ? "m" : "") + (clears("::ClearAverage") ? "a" : "") +
                      (rebuilds ? "r" : ""),
                  marks)
            << line;
    }
    Run("-reset_first_run_flags");
    Run("-band 5 -trigger_now");  // equal values count again
    EXPECT_GT(clears("::ClearAverage"), 0);
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
