// The order of the calls that bring the radio into receive state, and what a failing radio does to them.
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
    EXPECT_EQ(Output("-reset_config"), MissingGainFile());
    EXPECT_EQ(m_flows->m_rxConfig.m_band, 0u);
    EXPECT_EQ(m_flows->m_rxConfig.m_channel, 1u);
    EXPECT_EQ(m_flows->m_rxConfig.m_currChain, 1u);
    EXPECT_EQ(m_flows->m_adcConfig.chainMode, 2u);
    EXPECT_EQ(m_flows->m_adcConfig.last, ~std::uint64_t{0});
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
    const ChannelTables once = m_flows->m_channelTables;
    Run("-reset_config");
    EXPECT_EQ(m_flows->m_channelTables, once);
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
        EXPECT_EQ(m_flows->m_channelTables.size(), row.tables);
        EXPECT_EQ(m_flows->m_rxConfig.antennaMask, row.antennas);
        EXPECT_EQ(m_flows->m_rxConfig.m_currChain, row.chain);
        EXPECT_EQ(m_flows->m_rxConfig.antennaSelection, row.selection);
    }
}

TEST_F(FlowsReceiverTest, AChainWithoutAnAntennaIsRefused) {
    Start("antennas=1");
    EXPECT_EQ(Output("-chain B"), "ERROR:Chain B is not valid\n");
    EXPECT_EQ(Output("-chain AB"), "ERROR:Chain AB is not valid\n");
    EXPECT_EQ(Run("-chain A").exitCode, 0);
}

// Marks: receiver set-up, clear max hold, clear average; and whether the engine rebuilds.
TEST_F(FlowsReceiverTest, ASettingMarksWhatChangesAndNothingWhenItDoesNot) {
    struct Row {
        const char* line;
        const char* marks;  ///< letters: s set-up, m max hold, a average, r rebuild
    };
    const Row rows[] = {
        {"-band 2.4 -bandwidth 20 -channel 1 -chain A -rbw 39.0625", ""},
        {"-channel 6", "sm"},
        {"-band 5.2", "sma"},
        {"-band 5", ""},
        {"-channel 36", "smr"},
        {"-bandwidth 40", "smar"},
        {"-chain B", "s"},
        {"-rbw 156.25", "mar"},
        {"-rbw 156.25", ""},
        {"-maxhold true", "sm"},
        {"-maxhold true", ""},
        {"-maxhold false", ""},
        {"-channel_average true", "a"},
        {"-channel_average true", ""},
        {"-channel_average false", ""},
    };
    Start();
    ASSERT_EQ(Run("-trigger_now").exitCode, 0);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        m_flows->m_initFlags[0] = 0;
        m_flows->m_clearMaxHoldPending = m_flows->m_clearAveragePending = Engine().m_isInit = false;
        ASSERT_EQ(Run(row.line).exitCode, 0);
        const std::string marks = std::string(m_flows->m_initFlags[0] ? "s" : "") +
                                  (m_flows->m_clearMaxHoldPending ? "m" : "") +
                                  (m_flows->m_clearAveragePending ? "a" : "") + (Engine().m_isInit ? "r" : "");
        EXPECT_EQ(marks, row.marks);
    }
    Run("-reset_first_run_flags");
    Run("-band 5");
    EXPECT_TRUE(m_flows->m_clearAveragePending);  // equal values count again
}

TEST_F(FlowsReceiverTest, TheSampleRateFollowsHardwareAndBandwidth) {
    struct Row {
        const char* adapter;
        double rates[5];
    };
    for (const Row& row : {Row{"hw=7", {80, 80, 80, 0, 0}}, Row{"hw=11", {40, 40, 80, 160, 320}},
                           Row{"hw=30", {40, 40, 80, 160, 320}}, Row{"hw=8", {0, 0, 0, 0, 0}}}) {
        Start(row.adapter);
        m_flows->m_rxConfig.m_band = 2;
        for (int k = 0; k < 5; ++k) {
            Run("-bandwidth " + std::to_string(20 << k));
            EXPECT_EQ(Engine().m_SampleRate, row.rates[k]) << row.adapter << " " << (20 << k);
        }
    }
}

}  // namespace
