// The plug-in as a host drives it: its object, Init, lines of keys, DeInit.
#include <typeinfo>

#include "FlowsTest.h"
#include "LumenSAAsh2.h"
#include "LumenSAAsh4.h"
#include "LumenSABay.h"
#include "LumenSAElmOak.h"
#include "LumenSAFirYew.h"
#include "LumenSAPine.h"
#include "LumenSARowan.h"
#include "Support/FlowKeys.h"

extern "C" ITrellisPlugin* CreateInstance(IHostOutput* host, bool web);
extern "C" void DestroyInstance();

namespace {

using namespace LumenSpectrumAnalyzer;

class PluginTest : public FlowsTest {
protected:
    /// Runs every key once, those with an argument with several; the object must stand it. But the whole burn-in test,
    /// which takes its time.
    void RunEveryKey() {
        for (const auto& row : TarnKeys::Keys())
            for (const char* argument : {"", "true", "1", "A", "-50,-50,-50", "39.0625", "nowhere/file"}) {
                const std::string key(row.name);
                if (key == "-start_vesper_test") continue;
                const Answer answer = Run(key + " " + argument);
                ASSERT_EQ(answer.output.find("Unrecognized command line option: " + key), std::string::npos) << key;
            }
    }
};

TEST_F(PluginTest, TheExportsGiveOneObjectWhateverTheArgumentsAndDestroyItOnce) {
    DestroyInstance();
    ITrellisPlugin* plugin = CreateInstance(&m_host, true);
    EXPECT_NE(dynamic_cast<TarnWifiFlowsWeb*>(plugin), nullptr);
    EXPECT_EQ(CreateInstance(nullptr, false), plugin);
    DestroyInstance();
    DestroyInstance();
    EXPECT_EQ(dynamic_cast<TarnWifiFlowsWeb*>(CreateInstance(nullptr, false)), nullptr);
    DestroyInstance();
}

TEST_F(PluginTest, AnOperationWithoutARowOrWithAnotherArgumentEndsTheStart) {
    TarnWifiFlows flows(nullptr);
    for (const auto& [operation, told] : {std::pair<KeyOperation<TarnWifiFlows>, const char*>{
                                              {"-bogus", &TarnWifiFlows::TriggerNow}, "No row in the key table for "},
                                          {{"-rbw", &TarnWifiFlows::SetBand}, "Another argument in the key table for "},
                                          {{"-band", &TarnWifiFlows::TriggerNow}, "Another argument in "}})
        try {
            FlowKeys::Add<TarnWifiFlows>(flows, std::array{operation});
            ADD_FAILURE() << operation.key;
        } catch (const std::logic_error& failure) {
            EXPECT_TRUE(std::string(failure.what()).starts_with(told)) << failure.what();
        }
}

TEST_F(PluginTest, WithoutKeysEveryLineIsAnUnknownOption) {
    const std::string message = "Unrecognized command line option: -trigger_now \"a b\"";
    const auto expectUnknown = [&] {
        m_errorStream.str("");
        const Answer answer = Run("  -trigger_now   \"a b\" ");
        EXPECT_EQ(answer.exitCode, 256);
        EXPECT_EQ(answer.output, "ERROR:" + message + "\n");
        EXPECT_EQ(answer.error, message + "\n");
        EXPECT_EQ(answer.left, "-trigger_now \"a b\"");
        EXPECT_EQ(m_errorStream.str(), "\nCommand line error: " + message +
                                           "\nRun ' -?' to see the list of allowed command line options\n\n");
        EXPECT_EQ(Run("").exitCode, 0);
        EXPECT_EQ(Run(" \t\n").output, "");
    };
    Place("");
    expectUnknown();  // before Init
    Place("connected=0");
    m_flows->Init();
    expectUnknown();
    Start();
    m_flows->DeInit();
    expectUnknown();
    m_flows->DeInit();
}

TEST_F(PluginTest, AfterDeInitAnotherInitMeasuresAgain) {
    Start();
    Run("-channel_average true -channel_average_sweep_val 10");
    m_flows->DeInit();
    EXPECT_EQ(m_flows->GetLmnSA(), nullptr);
    m_flows->Init();
    EXPECT_EQ(Run("-trigger_now -export_freq_power powers.csv").exitCode, 0);
    EXPECT_EQ(Lines(Read("powers.csv")).size(), 3u);  // no average holds the trigger back
    m_flows->Init();                                  // without DeInit between
    EXPECT_EQ(Run("-trigger_now").exitCode, 0);
}

TEST_F(PluginTest, AnObjectWhoseInitFailedAnswersEveryKeyWithAnError) {
    for (const char* adapter : {"hw=18", "hw=10", "hw=19", "hw=31"}) {
        Place(adapter);
        EXPECT_THROW(m_flows->Init(), std::runtime_error) << adapter;
        EXPECT_EQ(Run("-trigger_now").exitCode, 258) << adapter;
        RunEveryKey();
    }
    for (const char* fault : {"GetHwType:1:quay", "GetMacAddress:1", "ApplyMcc:1:std", "Reload:1", "GetAntennaMask:1",
                              "IsBandEnabled:1", "IsChannelSupported:100"}) {
        Place("", fault);
        EXPECT_ANY_THROW(m_flows->Init()) << fault;
        RunEveryKey();
        m_flows->DeInit();
        m_flows->Init();
        EXPECT_EQ(Run("-trigger_now").exitCode, 0) << fault;
    }
}

TEST_F(PluginTest, ARefusedCountryLeavesInitWithItsText) {
    Place("", "ApplyMcc:1:quay");
    try {
        m_flows->Init();
        FAIL();
    } catch (const Common::Exception& failure) {
        EXPECT_STREQ(failure.what(), "Failed to set MCC US");
    }
}

struct Family {
    std::uint32_t hw;
    const std::type_info* engine;
    std::string mode;     ///< call that prepares the capture, with its words
    std::string gain;     ///< call that takes the manual gain
    std::string capture;  ///< the calls of one capture
    std::string country;  ///< "" or the code of "US" in decimal
};

TEST_F(PluginTest, EachHardwareGetsItsEngineItsCaptureAndItsRadioCalls) {
    const std::string yarrow = "SetCaptureDescriptorC ReadCaptureEx";
    const std::string clover = "SetCaptureSource SetCaptureDescriptorD ReadCaptureEx";
    const std::string a = "PrepareCaptureA 2", b = "PrepareCaptureB 0 2 0 0 0 0 0 0 0 0 0 0 0 0 0";
    const std::string us = std::to_string('U' * 256 + 'S');
    const auto manual = [](char layout) { return std::string("SetManualGain") + layout; };
    const std::string state = "GetCaptureState ";
    const Family families[] = {
        {6, &typeid(CLmnElmOak), "", manual('A'), state + "SetCaptureDescriptorA ReadCapture", ""},
        {7, &typeid(CLmnElmOak), "", manual('A'), state + "SetCaptureDescriptorA ReadCapture", ""},
        {9, &typeid(CLmnSA), "", manual('A'), "SetCaptureDescriptorB ReadCapture", ""},
        {11, &typeid(CLmnSA), "", manual('A'), yarrow, ""},
        {12, &typeid(CLmnSA), "", manual('A'), yarrow, ""},
        {15, &typeid(CLmnSA), "", manual('A'), yarrow, ""},
        {16, &typeid(CLmnFirYew), "", manual('A'), yarrow, ""},
        {20, &typeid(CLmnFirYew), "", manual('A'), yarrow, ""},
        {24, &typeid(CLmnFirYew), "", manual('A'), yarrow, ""},
        {21, &typeid(CLmnAsh2), a, manual('A'), yarrow, us},
        {25, &typeid(CLmnAsh2), "", manual('B'), yarrow, ""},
        {28, &typeid(CLmnAsh2), "", manual('B'), yarrow, ""},
        {22, &typeid(CLmnBay), "", manual('A'), yarrow, us},
        {23, &typeid(CLmnAsh4), a, manual('A'), yarrow, us},
        {26, &typeid(CLmnPine), b, manual('C'), clover, us},
        {27, &typeid(CLmnPine), b, manual('C'), clover, us},
        {29, &typeid(CLmnRowan), b, manual('C'), clover, us},
        {30, &typeid(CLmnSA), b, manual('C'), clover, us},
    };
    for (const Family& family : families) {
        SCOPED_TRACE(family.hw);
        Place("hw=" + std::to_string(family.hw) + ",samples=8192");
        m_flows->Init();
        const auto initCalls = Calls();
        EXPECT_EQ(std::ranges::count(initCalls, "SetMcc " + family.country + " 1"), family.country.empty() ? 0 : 1);
        EXPECT_EQ(std::ranges::count(initCalls, "ApplyMcc"), 1);
        const auto& engine = Engine();
        EXPECT_TRUE(typeid(engine) == *family.engine) << typeid(engine).name();
        ForgetCalls();
        EXPECT_EQ(Run("-trigger_now").exitCode, 0);
        std::string calls;
        for (const std::string& call : CallNames())
            calls += (calls.empty() ? "" : " ") + call;
        const std::string mode = family.mode.empty() ? "" : family.mode.substr(0, family.mode.find(' ')) + " ";
        EXPECT_EQ(calls, "SetCaptureMode " + mode + "SetLmac ConfigTxRx StartStopAllPeriodicCalibrations " +
                             family.gain + " " + family.capture + " SetCaptureMode");
        EXPECT_EQ(std::ranges::count(Calls(), family.mode), family.mode.empty() ? 0 : 1);
    }
}

TEST_F(PluginTest, HardwareWithoutASampleRateFailsATriggerWithATextAndMeasuresNothing) {
    for (const char* adapter : {"hw=5", "hw=8"}) {
        Start(adapter);
        for (int k = 0; k < 2; ++k) {  // the second one finds the lock free
            const Answer answer = Run("-trigger_now");
            EXPECT_EQ(answer.exitCode, 258);
            EXPECT_GT(answer.error.size(), 1u);
        }
    }
}

TEST_F(PluginTest, ThePlatformDecidesTheEnginesVariantAndTheWorkloadFile) {
    struct Row {
        const char* device;
        bool isGln, isCrk;
    };
    for (const Row& row : {Row{"0x7AF0", true, false}, Row{"0x51F0", true, false}, Row{"0x54F0", true, false},
                           Row{"0x7F70", false, true}, Row{"0x7E40", false, true}, Row{"0x1234", false, false}}) {
        Start(std::string("device=") + row.device);
        EXPECT_EQ(Engine().m_IsBRK, !row.isGln) << row.device;
        const bool isReplaced = Read("log.txt").find("CRK Detected, Changing bitconfig file") != std::string::npos;
        EXPECT_EQ(isReplaced, row.isCrk) << row.device;
        Streams::AppStreams::OpenLogFile(Path("log.txt"));
    }
}

TEST_F(PluginTest, OnlyTheFrontEndVariantSendsObjects) {
    TarnWifiFlows plain(&m_host);
    plain.OutputObject("Type", "{}");
    EXPECT_TRUE(m_host.texts.empty());
    plain.Output("a");
    plain.OutputError("b");
    TarnWifiFlowsWeb(&m_host).OutputObject("Clear Vesper Test Messages", "{}");
    EXPECT_EQ(m_host.texts, (std::vector<std::string>{"output a", "error b",
                                                      R"(object {"type": "Clear Vesper Test Messages", "data": {}})"}));
    TarnWifiFlowsWeb(nullptr).OutputObject("Type", "{}");  // a host may bring no object
}

struct Line {
    const char* text;
    std::int32_t exitCode;
    const char* error;  ///< without its line end; the output is "ERROR:" and the same
    const char* left;
};

TEST_F(PluginTest, ABadLineGivesItsExitCodeAndItsTextTwice) {
    const std::string setUp = "-reset_config -band 5.2 -channel 36";
    const Line lines[] = {
        {"-bogus", 256, "Unrecognized command line option: -bogus", "-bogus"},
        {"-bogus -band 5.2 x", 256, "Unrecognized command line option: -bogus x", "-bogus x"},
        {"-band", 256, "invalid usage of key <-band>: argument is missing.", "-band"},
        {"-channel 12abc", 256, "invalid usage of key <12abc>: '12abc' is unexpected.", "-channel 12abc"},
        {"-rbw abc -bogus", 256, "invalid usage of key <abc>: 'abc' is unexpected.", "-rbw abc -bogus"},
        {"-find_peaks 81", 257, "Invalid window size input: 81. window size must be a whole number from 5 to 80",
         "-find_peaks 81"},
        {"-find_peaks 4", 257, "Invalid window size input: 4. window size must be a whole number from 5 to 80",
         "-find_peaks 4"},
        {"-maxhold 1", 257, "Invalid flag: 1", "-maxhold 1"},
        {"-histogram TRUE", 257, "Invalid flag: TRUE", "-histogram TRUE"},
        {"-channel_average_sweep_val 0", 256, "parameter average sweeps is out of range [1...100]",
         "-channel_average_sweep_val 0"},
        {"-channel_average_sweep_val 101", 256, "parameter average sweeps is out of range [1...100]",
         "-channel_average_sweep_val 101"},
        {"-channel_average_counter 1,2", 258, "incorrect number of channel average counter values",
         "-channel_average_counter 1,2"},
        {"-channel_average_counter 7,100,3", 256, "parameter channel average counter is out of range [0...99]",
         "-channel_average_counter 7,100,3"},
        {"-channel_average_counter 7,-1,3", 256, "parameter channel average counter is out of range [0...99]",
         "-channel_average_counter 7,-1,3"},
        {"-get_power_per_chain AB", 258, "AB is an invalid argument for a chain", "-get_power_per_chain AB"},
        {"-band 7", 258, "Band 7 is not supported", "-band 7"},
        {"-bandwidth 30", 258, "Invalid bandwidth", "-bandwidth 30"},
        {"-band 2.4 -bandwidth 80", 257, "bandwidth 80 is not supported in this band", "-band 2.4 -bandwidth 80"},
        {"-bandwidth 320", 257, "bandwidth 320 is not supported in this band", "-bandwidth 320"},
        {"-channel 37", 258, "Channel 37 is not supported", "-channel 37"},
        {"-bandwidth 40 -channel 36", 258, "Channel is not supported in bandwidth 40Mhz", "-bandwidth 40 -channel 36"},
        {"-bandwidth 40 -channel 38 -band 5.2 -bandwidth 80", 258, "Channel is not supported in bandwidth 80Mhz",
         "-bandwidth 40 -channel 38 -band 5.2 -bandwidth 80"},
        {"-chain C", 258, "Chain C is not supported", "-chain C"},
        {"-rbw 78.1", 258, "RBW 78.1 is not valid", "-rbw 78.1"},
        {"-internal_gain 6", 256, "parameter internal gain is out of range [0...5]", "-internal_gain 6"},
        {"-internal_gain -1", 256, "parameter internal gain is out of range [0...5]", "-internal_gain -1"},
        {"-preLNA_resistor 1", 257, "Invalid flag: 1", "-preLNA_resistor 1"},
        {"-external_gain true", 258, "External gain is supported only for Elm HE or Oak", "-external_gain true"},
        {"-noise_floor -90,-90", 258, "incorrect number of noise floor values", "-noise_floor -90,-90"},
        {"-noise_floor -91,0,-90", 256, "parameter noise floor is out of range [-160...-1]", "-noise_floor -91,0,-90"},
        {"-mcc_profile ZZ -set_mcc", 258, "Failed to set MCC ZZ", "-mcc_profile ZZ -set_mcc"},
    };
    Start();
    for (const Line& line : lines) {
        SCOPED_TRACE(line.text);
        ASSERT_EQ(Run(setUp).exitCode, 0);
        m_errorStream.str("");
        const Answer answer = Run(line.text);
        EXPECT_EQ(answer.exitCode, line.exitCode);
        EXPECT_EQ(answer.error, std::string(line.error) + "\n");
        EXPECT_EQ(answer.output, "ERROR:" + answer.error);
        EXPECT_EQ(answer.left, line.left);
        if (line.exitCode != 256) {
            EXPECT_EQ(m_errorStream.str(), "\nError: " + answer.error);
        }
    }
    // What stood before a bad value in a list, and before a bad key on a line, stays applied.
    EXPECT_EQ(Engine().m_ChannelAverageCounter[0], 7u);
    EXPECT_EQ(Engine().m_BandNoiseFloor[0], -91);
    Run("-band 6-7 -rbw abc");
    EXPECT_EQ(Engine().m_Band, 2u);
}

TEST_F(PluginTest, ALineTakesEffectInTheOrderOfTheTableWhateverItsOwn) {
    Start();
    EXPECT_EQ(Run("-channel 36 -BAND 5.2").exitCode, 0);
    EXPECT_EQ(Engine().m_CenterFreq, 5180.0);
    EXPECT_EQ(Run("-channel 42 -bandwidth 80 -chain B -band 5 -reset_config").exitCode, 0);
    EXPECT_EQ(Engine().m_CenterFreq, 5210.0);
    EXPECT_EQ(Engine().m_ChainName, "B");
    Run("-channel_average true");
    EXPECT_EQ(Output("-get_channel_average -channel_average false"), "false");
}

TEST_F(PluginTest, AFailedLineLeavesNoAnswerBehindForTheNext) {
    Start();
    std::string line = "-get_channel_average -band 7", output = "stale", error = "stale";
    EXPECT_EQ(m_flows->RunCommand(line, output, error, true), 258);
    EXPECT_EQ(output, "ERROR:Band 7 is not supported\n");
    line = "-get_channel_average";
    EXPECT_EQ(m_flows->RunCommand(line, output, error, true), 0);
    EXPECT_EQ(output, "false");
    EXPECT_EQ(error, "");
    EXPECT_EQ(line, "");
}

}  // namespace
