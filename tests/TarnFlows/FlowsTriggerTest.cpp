// Triggers, what is read out and written behind them, gain, versions and country.
#include <regex>

#include "FlowsTest.h"
#include "Support/NumberText.h"

namespace {

class FlowsTriggerTest : public FlowsTest {
protected:
    std::string GainFile(const std::string& rows) {
        return m_temp.Write("gain.csv", "MAC,CHAIN,FREQ,GAIN,BW\n" + rows);
    }
    static std::string Row(const std::string& chain, const std::string& frequency, const std::string& gain) {
        return "02:54:41:52:4E:01," + chain + "," + frequency + "," + gain + ",20MHz\n";
    }
};

TEST_F(FlowsTriggerTest, ATriggerAnswersBinsSamplesBucketsAndSweepLength) {
    Start();
    EXPECT_EQ(Output("-trigger_now"), "1024\n98304\n20\n131072");
    EXPECT_EQ(Output("-trigger_now -trigger_now -rbw 312.5"), "128\n98304\n20\n131072");
}

TEST_F(FlowsTriggerTest, ThePlainAnswersAreLinesOfNumbersAsAStreamWritesThem) {
    Start();
    Run("-histogram true -maxhold true -chain AB -trigger_now");
    for (const auto& [key, lines, numbers] : {std::tuple{"-update_spectrum", 2u, 1024u},
                                              {"-update_maxhold", 2u, 1024u},
                                              {"-update_channel_average", 2u, 1024u},
                                              {"-update_iq", 4u, 98304u},
                                              {"-update_histogram", 8u, 20u}}) {
        const std::string text = Output(key);
        EXPECT_FALSE(text.ends_with('\n')) << key;
        EXPECT_EQ(text.find("  "), std::string::npos) << key;
        EXPECT_EQ(text.find(" \n"), std::string::npos) << key;
        ASSERT_EQ(Lines(text).size(), lines) << key;
        EXPECT_EQ(std::ranges::count(Lines(text)[0], ' ') + 1, numbers) << key;
    }
    EXPECT_EQ(std::ranges::count(Lines(Output("-update_histogram"))[3], ' '), 1);
    std::ostringstream expected;
    expected << Engine().m_Spectrum[1]->val[0] << ' ' << Engine().m_Spectrum[1]->val[1] << ' ';
    EXPECT_TRUE(Lines(Output("-update_spectrum"))[1].starts_with(expected.str()));
    expected.str("");
    expected << Engine().GetChannelPowerPerChain(1);
    EXPECT_EQ(Output("-get_power_per_chain B"), expected.str());
    Run("-chain B -trigger_now");
    EXPECT_EQ(Output("-get_power_per_chain B"), Output("-get_power_per_chain A"));  // the one chain there is
    EXPECT_EQ(Run("-find_peaks 10").exitCode, 0);
    EXPECT_EQ(Lines(Output("-update_peaks")).size(), 1u);
}

TEST_F(FlowsTriggerTest, ReadOutsBetweenARetuningAndTheNextTriggerNeitherCrashNorThrow) {
    Start();
    Run("-maxhold true -trigger_now");
    Run("-band 6-7 -channel 233");  // its place in the list lies beyond the lists of before
    for (const char* line : {"-update_maxhold", "-update_spectrum", "-find_peaks 80", "-update_peaks", "-clear_average",
                             "-rbw 312.5", "-update_iq", "-update_maxhold"})
        Run(line);
    EXPECT_EQ(Run("-trigger_now").exitCode, 0);
    EXPECT_EQ(Lines(Output("-update_maxhold")).size(), 1u);
}

TEST_F(FlowsTriggerTest, AFailedCaptureLeavesTheLockFreeAndTheNextOneRuns) {
    for (const char* kind : {":common", ":quay", ":std"}) {
        Start("", std::string("ReadCaptureEx:1") + kind);
        const Answer answer = Run("-trigger_now");
        EXPECT_EQ(answer.exitCode, 258) << kind;
        EXPECT_NE(answer.error.find("simulated fault at call 1 of ReadCaptureEx"), std::string::npos) << kind;
        EXPECT_EQ(CallNames().back(), "ReadCaptureEx");  // the capture mode stays on
        EXPECT_EQ(Run("-trigger_now").exitCode, 0) << kind;
        m_flows->DeInit();
    }
}

TEST_F(FlowsTriggerTest, The4000thTriggerResetsTheStoreAndSaysSo) {
    Start("samples=2048");
    Streams::AppStreams::CloseLogFile();  // some 100 lines a trigger
    std::string line;
    for (int k = 0; k < 3999; ++k)
        line += "-trigger_now ";
    EXPECT_EQ(Output(line), "1024\n2048\n20\n2048");
    EXPECT_EQ(Output("-trigger_now -export_freq_power " + Path("powers.csv")),
              "1024\n2048\n20\n2048\nMax number of consecutive runs is reached, reseting data.\n");
    EXPECT_EQ(Read("powers.csv"), "BW, Channel, RBW\n\n");
    EXPECT_EQ(Output("-trigger_now"), "1024\n2048\n20\n2048");
}

TEST_F(FlowsTriggerTest, TheStoreKeepsEachTriggerByChannelAndChain) {
    Start("samples=2048");
    const auto power = [&](int chain) {
        std::string text;
        AppendStreamText(text, Engine().GetChannelPowerPerChain(chain));
        return text;
    };
    std::string expected =
        "BW, Channel, RBW, Chain A Power, Chain B Power, Trigger Time, Chain A Power, Chain B Power, "
        "Trigger Time\n20MHz, 36 (5180 MHz), 78.125, ";
    Run("-band 5.2 -channel 40 -chain B -trigger_now");
    const std::string b = power(0);
    Run("-channel 36 -chain A -trigger_now");
    expected += power(0) + ", None, TIME, ";
    Run("-chain AB -rbw 78.125 -trigger_now");
    expected += power(0) + ", " + power(1) + ", TIME\n20MHz, 40 (5200 MHz), 39.0625, None, " + b + ", TIME\n\n";
    ASSERT_EQ(Run("-export_freq_power " + Path("powers.csv")).exitCode, 0);
    const std::regex time(R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d)");
    EXPECT_EQ(std::regex_replace(Read("powers.csv"), time, "TIME"), expected);
}

TEST_F(FlowsTriggerTest, AnAveragingRunStoresItsLastTriggerUnlessMaxHoldIsOn) {
    Start("samples=2048");
    const auto stored = [&] {
        Run("-export_freq_power powers.csv");
        return (std::ranges::count(Lines(Read("powers.csv"))[0], ',') - 2) / 3;  // three columns a trigger
    };
    Run("-channel_average true -channel_average_sweep_val 10");
    for (const auto& [counters, count] : {std::pair{"8,9,9", 0}, {"9,0,0", 1}, {"19,0,0", 2}, {"18,0,0", 2}}) {
        Run(std::string("-trigger_now -channel_average_counter ") + counters);
        EXPECT_EQ(stored(), count) << counters;
    }
    Run("-maxhold true -trigger_now -channel_average_counter 3,3,3");
    EXPECT_EQ(stored(), 3);
}

TEST_F(FlowsTriggerTest, ExportsRefuseALinkAndWriteNothing) {
    Start("samples=2048");
    Run("-trigger_now -find_peaks 10");
    Write("target", "mine");
    std::filesystem::create_symlink(Path("target"), Path("link"));
    for (const char* key :
         {"-save_spectrum", "-save_maxhold", "-save_IQ", "-save_rbw_power", "-save_peaks", "-export_freq_power"}) {
        const Answer answer = Run(std::string(key) + " " + Path("link"));
        EXPECT_EQ(answer.error, "File " + Path("link") + " is a link\n") << key;
        EXPECT_EQ(answer.exitCode, 258) << key;
        EXPECT_EQ(Read("target"), "mine") << key;
        EXPECT_EQ(Run(std::string(key) + " " + Path("file")).exitCode, 0) << key;
        EXPECT_TRUE(std::filesystem::exists(Path("file"))) << key;
        std::filesystem::remove(Path("file"));
        EXPECT_EQ(Run(std::string(key) + " " + Path("no/such/folder")).exitCode, 0) << key;
    }
}

// Gain.

TEST_F(FlowsTriggerTest, AGainFileRulesFromItsLookUpToTheNextManualGain) {
    Start("samples=2048");
    const std::string file = GainFile(Row("A", "5180", "-12.5") + Row("A", "5180", "99") + Row("B", "5200", "7"));
    Run("-band 5.2 -channel 36 -internal_gain 2 -trigger_now");
    const double manual = Engine().m_Gain[0];
    EXPECT_EQ(Output("-gain_file_name " + file), "");
    EXPECT_EQ(Engine().m_Gain[0], manual);  // named, not looked up
    EXPECT_EQ(Output("-set_gain_from_file"), "Gain data was loaded successfully from the file");
    Run("-trigger_now");
    EXPECT_EQ(Engine().m_Gain[0], -12.5);
    Run("-channel 40 -trigger_now");
    EXPECT_EQ(Engine().m_Gain[0], -12.5);  // until the next look-up
    EXPECT_EQ(Output("-set_gain_from_file"), "Could not use gain data from a file. No gain matching was found on file");
    EXPECT_EQ(Output("-set_gain_from_file"), " ");  // the file is out of use
    Run("-channel 36 -trigger_now");
    EXPECT_EQ(Engine().m_Gain[0], manual);
    Run("-set_gain_from_file -channel 40 -chain B -gain_file_name " + file);
    EXPECT_EQ(Output("-set_gain_from_file -chain AB -gain_file_name " + file + " -channel 36"),
              "Could not use gain data from a file. No gain matching was found on file");
    Run("-gain_file_name " + file + " -internal_gain 2");
    EXPECT_EQ(Output("-set_gain_from_file"), " ");  // a manual gain ended its use
}

TEST_F(FlowsTriggerTest, TheFirstFailedLookUpReportsNothing) {
    Start();
    const std::string line = "-set_gain_from_file -gain_file_name " + GainFile(Row("A", "1", "1"));
    EXPECT_EQ(Output(line), "");
    EXPECT_EQ(Output(line), "Could not use gain data from a file. No gain matching was found on file");
    Run("-reset_first_run_flags");
    EXPECT_EQ(Output(line), "");
}

TEST_F(FlowsTriggerTest, TheInternalGainCountsThreeTimesOnTheMiddleBandOfSomeHardware) {
    for (const auto& [hardware, faults, gain, exitCode] : {std::tuple{"16", "", "6", 0},
                                                           {"16", "SetManualGainA:1", "6", 258},
                                                           {"16", "SetManualGainA:1:std", "6", 258},
                                                           {"12", "", "2", 0}}) {
        Start(std::string("samples=2048,hw=") + hardware, faults);
        EXPECT_EQ(Run("-band 5.2 -channel 36 -internal_gain 2 -trigger_now").exitCode, exitCode);
        Run("-trigger_now");  // the tripled value was for one record
        for (const std::string& call : Calls())
            if (NameOf(call) == "SetManualGainA") {
                EXPECT_TRUE(call.starts_with(std::string("SetManualGainA 1 0 0 ") + gain + " 0 0 ")) << call;
            }
    }
}

// Versions and country.

TEST_F(FlowsTriggerTest, VersionsAndConfigurationStandInTheirLines) {
    Start("device=0x54F0");
    m_flows->GetComponentsVersions();
    EXPECT_EQ(Run("").output,
              "Application version: TRN.03994.23.30.0\nUSC version: " + m_flows->GetUscVersion() +
                  "\nDriver version: " + m_flows->GetDriverVersion() + "\nFW version: " + m_flows->GetUcodeVersion() +
                  "\nQUAYNDISUIO version: " + m_flows->GetSVDriverVersion() + "\nMAC Address: 02:54:41:52:4E:01\n");
    const auto lines = Lines(Output("-get_supported_config"));
    ASSERT_GT(lines.size(), 11u);
    EXPECT_EQ(lines[0], std::to_string(0x54F0));
    EXPECT_EQ(lines[4] + " " + lines[5] + " " + lines[6], "0 3 02:54:41:52:4E:01");  // no sweep yet
    EXPECT_EQ(lines[11], "(1,LB),1,0,0,0,0");
    for (const char* flags : {"(36,HB),1,0,0,0,0", "(31,UHB),0,0,0,0,1"})
        EXPECT_EQ(std::ranges::count(lines, flags), 1) << flags;
}

TEST_F(FlowsTriggerTest, ThePlatformReportHasNineLabelledLines) {
    Start();
    std::string labels;
    const auto lines = Lines(Output("-get_platform_info"));
    for (const std::string& line : lines)
        labels += line.substr(0, line.find(": ")) + ";";
    EXPECT_EQ(labels,
              "CPU string;Computer name;Architecture;Number of processors;wProcessorRevision;Processor type;"
              "Min app address;Max app address;Active processor mask;");
    EXPECT_GE(std::stoi(lines.at(3).substr(22)), 1);
    EXPECT_TRUE(lines.at(7).starts_with("Max app address: 0x")) << lines[7];
}

TEST_F(FlowsTriggerTest, OnlyTwoLettersAreACountry) {
    Start("hw=16,card=0");
    Run("-set_mcc");
    EXPECT_EQ(CallNames().at(0), "ApplyMcc");  // without a country the device keeps its own
    for (const auto& [value, kept] : {std::pair{"de", "de"}, {"D1", "de"}, {"USA", "de"}, {"U", "de"}, {"US", "US"}}) {
        SCOPED_TRACE(value);
        m_errorStream.str("");
        EXPECT_EQ(Run(std::string("-mcc_profile ") + value).exitCode, 0);
        const bool good = kept == std::string(value);
        EXPECT_EQ(m_errorStream.str(), good ? "" : std::string("Error: Invalid MCC value: ") + value + "\n");
        ForgetCalls();
        Run("-set_mcc");
        EXPECT_EQ(Calls().at(0), "SetMcc " + std::to_string(kept[0] * 256 + kept[1]) + " 1");
    }
}

}  // namespace
