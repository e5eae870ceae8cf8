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
#include "Support/Thrown.h"

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
    const std::pair<KeyOperation<TarnWifiFlows>, const char*> rows[] = {
        {{"-bogus", &TarnWifiFlows::TriggerNow}, "No row in the key table for "},
        {{"-rbw", &TarnWifiFlows::SetBand}, "Another argument in the key table for "},
        {{"-band", &TarnWifiFlows::TriggerNow}, "Another argument in "}};
    for (const auto& row : rows) {
        const auto add = [&] { FlowKeys::Add<TarnWifiFlows>(flows, std::array{row.first}); };
        EXPECT_TRUE(Support::ThrownText(add).starts_with(row.second)) << row.first.key;
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
    Place("", "ApplyMcc:1:quay");
    EXPECT_EQ(Support::ThrownText([&] { m_flows->Init(); }), "Failed to set MCC US");
}

struct Family {
    std::vector<int> hardware;
    const std::type_info& engine;
    std::string mode;     ///< call that prepares the capture, with its words
    char gain;            ///< layout of the record that takes the manual gain
    std::string capture;  ///< the calls of one capture
    bool hasCountry;      ///< Init sets "US"
};

TEST_F(PluginTest, EachHardwareGetsItsEngineItsCaptureAndItsRadioCalls) {
    const std::string old = "GetCaptureState SetCaptureDescriptorA ReadCapture";
    const std::string yarrow = "SetCaptureDescriptorC ReadCaptureEx";
    const std::string clover = "SetCaptureSource SetCaptureDescriptorD ReadCaptureEx";
    const std::string a = "PrepareCaptureA 2", b = "PrepareCaptureB 0 2 0 0 0 0 0 0 0 0 0 0 0 0 0";
    const Family families[] = {
        {{6, 7}, typeid(CLmnElmOak), "", 'A', old, false},
        {{9}, typeid(CLmnSA), "", 'A', "SetCaptureDescriptorB ReadCapture", false},
        {{11, 12, 15}, typeid(CLmnSA), "", 'A', yarrow, false},
        {{16, 20, 24}, typeid(CLmnFirYew), "", 'A', yarrow, false},
        {{21}, typeid(CLmnAsh2), a, 'A', yarrow, true},
        {{25, 28}, typeid(CLmnAsh2), "", 'B', yarrow, false},
        {{22}, typeid(CLmnBay), "", 'A', yarrow, true},
        {{23}, typeid(CLmnAsh4), a, 'A', yarrow, true},
        {{26, 27}, typeid(CLmnPine), b, 'C', clover, true},
        {{29}, typeid(CLmnRowan), b, 'C', clover, true},
        {{30}, typeid(CLmnSA), b, 'C', clover, true},
    };
    const std::string country = "SetMcc " + std::to_string('U' * 256 + 'S') + " 1";
    for (const Family& family : families)
        for (const int hardware : family.hardware) {
            SCOPED_TRACE(hardware);
            Place("hw=" + std::to_string(hardware) + ",samples=8192");
            m_flows->Init();
            const auto initCalls = Calls();
            EXPECT_EQ(std::ranges::count(initCalls, country), family.hasCountry);
            EXPECT_EQ(std::ranges::count(initCalls, "ApplyMcc"), 1);
            const auto& engine = Engine();
            EXPECT_TRUE(typeid(engine) == family.engine) << typeid(engine).name();
            ForgetCalls();
            EXPECT_EQ(Run("-trigger_now").exitCode, 0);
            std::string calls;
            for (const std::string& call : CallNames())
                calls += call + " ";
            const std::string mode = family.mode.empty() ? "" : NameOf(family.mode) + " ";
            EXPECT_EQ(calls, "SetCaptureMode " + mode +
                                 "SetLmac ConfigTxRx StartStopAllPeriodicCalibrations SetManualGain" + family.gain +
                                 " " + family.capture + " SetCaptureMode ");
            EXPECT_EQ(std::ranges::count(Calls(), family.mode), !family.mode.empty());
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
    for (const auto& [device, isGln, isCrk] : {std::tuple{"0x7AF0", true, false},
                                               {"0x51F0", true, false},
                                               {"0x54F0", true, false},
                                               {"0x7F70", false, true},
                                               {"0x7E40", false, true},
                                               {"0x1234", false, false}}) {
        Start(std::string("device=") + device);
        EXPECT_EQ(Engine().m_IsBRK, !isGln) << device;
        const bool isReplaced = Read("log.txt").find("CRK Detected, Changing bitconfig file") != std::string::npos;
        EXPECT_EQ(isReplaced, isCrk) << device;
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
    EXPECT_EQ(m_host.texts, (Texts{"output a", "error b", Object("Clear Vesper Test Messages", "{}")}));
    TarnWifiFlowsWeb(nullptr).OutputObject("Type", "{}");  // a host may bring no object
}

struct Line {
    const char* text;
    std::int32_t exitCode;
    std::string error;        ///< without its line end; the output is "ERROR:" and the same
    const char* left = text;  ///< what stays of the line
};

std::string OutOfRange(const std::string& parameter, const std::string& range) {
    return "parameter " + parameter + " is out of range [" + range + "]";
}

TEST_F(PluginTest, ABadLineGivesItsExitCodeAndItsTextTwice) {
    const std::string setUp = "-reset_config -band 5.2 -channel 36";
    const std::string window = ". window size must be a whole number from 5 to 80";
    const Line lines[] = {
        {"-bogus", 256, "Unrecognized command line option: -bogus"},
        {"-bogus -band 5.2 x", 256, "Unrecognized command line option: -bogus x", "-bogus x"},
        {"-band", 256, "invalid usage of key <-band>: argument is missing."},
        {"-channel 12abc", 256, "invalid usage of key <12abc>: '12abc' is unexpected."},
        {"-rbw abc -bogus", 256, "invalid usage of key <abc>: 'abc' is unexpected."},
        {"-find_peaks 81", 257, "Invalid window size input: 81" + window},
        {"-find_peaks 4", 257, "Invalid window size input: 4" + window},
        {"-maxhold 1", 257, "Invalid flag: 1"},
        {"-histogram TRUE", 257, "Invalid flag: TRUE"},
        {"-preLNA_resistor 1", 257, "Invalid flag: 1"},
        {"-channel_average_sweep_val 0", 256, OutOfRange("average sweeps", "1...100")},
        {"-channel_average_counter 1,2", 258, "incorrect number of channel average counter values"},
        {"-channel_average_counter 7,100,3", 256, OutOfRange("channel average counter", "0...99")},
        {"-get_power_per_chain AB", 258, "AB is an invalid argument for a chain"},
        {"-band 7", 258, "Band 7 is not supported"},
        {"-bandwidth 30", 258, "Invalid bandwidth"},
        {"-band 2.4 -bandwidth 80", 257, "bandwidth 80 is not supported in this band"},
        {"-bandwidth 320", 257, "bandwidth 320 is not supported in this band"},
        {"-channel 37", 258, "Channel 37 is not supported"},
        {"-bandwidth 40 -channel 36", 258, "Channel is not supported in bandwidth 40Mhz"},
        {"-bandwidth 40 -channel 38 -band 5.2 -bandwidth 80", 258, "Channel is not supported in bandwidth 80Mhz"},
        {"-chain C", 258, "Chain C is not supported"},
        {"-rbw 78.1", 258, "RBW 78.1 is not valid"},
        {"-internal_gain 6", 256, OutOfRange("internal gain", "0...5")},
        {"-external_gain true", 258, "External gain is supported only for Elm HE or Oak"},
        {"-noise_floor -90,-90", 258, "incorrect number of noise floor values"},
        {"-noise_floor -91,0,-90", 256, OutOfRange("noise floor", "-160...-1")},
        {"-mcc_profile ZZ -set_mcc", 258, "Failed to set MCC ZZ"},
    };
    Start();
    for (const Line& line : lines) {
        SCOPED_TRACE(line.text);
        ASSERT_EQ(Run(setUp).exitCode, 0);
        m_errorStream.str("");
        const Answer answer = Run(line.text);
        EXPECT_EQ(answer.exitCode, line.exitCode);
        EXPECT_EQ(answer.error, line.error + "\n");
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
    EXPECT_EQ(Output("-get_channel_average -band 7"), "ERROR:Band 7 is not supported\n");
    std::string line = "-get_channel_average", output = "stale", error = "stale";
    EXPECT_EQ(m_flows->RunCommand(line, output, error, true), 0);
    EXPECT_EQ(output + error + line, "false");
}

}  // namespace
