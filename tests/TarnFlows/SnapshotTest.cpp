// The stored measurement state: what a snapshot holds, what comes back of it, and files that are none.
#include <sys/resource.h>

#include <csignal>
#include <random>

#include "FlowsTest.h"
#include "OSAL/WholeFile.h"

namespace {

class SnapshotTest : public FlowsTest {
protected:
    /// A small snapshot "a.csv" of both chains of channel 42, and its text.
    std::string Saved() {
        Start("samples=4096");
        Run("-band 5.2 -bandwidth 80 -rbw 312.5 -channel 42 -chain AB -maxhold true -histogram true "
            "-channel_average true -noise_floor -90,-91,-92 -internal_gain 2");
        Run("-channel_average_sweep_val 1 -trigger_now");
        EXPECT_EQ(Run("-save_all " + Path("a.csv")).error, "");
        return Read("a.csv");
    }
    std::string Load(const std::string& text) {
        Write("b.csv", text);
        return Run("-load_all " + Path("b.csv")).error;
    }
    static std::string With(std::string text, const std::string& from, const std::string& to) {
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    }
    /// Whatever was loaded: what can be read out is read, and the next measurement goes.
    void ExpectUsable(const std::string& what) {
        for (const char* key :
             {"-update_spectrum", "-update_iq", "-update_maxhold", "-update_histogram", "-find_peaks 10"})
            Run(key);
        EXPECT_EQ(Run("-trigger_now").error, "") << what;
    }
};

TEST_F(SnapshotTest, HoldsThreeColumnsAFieldAndTheSettingsBeside) {
    const Texts lines = Lines(Saved());
    ASSERT_EQ(lines.size(), 4097u);
    std::string header;
    for (const char* field : {"m_Average 256", "m_HistMinMax 3", "m_Histogram 20", "m_HistogramI 20", "m_HistogramQ 20",
                              "m_ISweep 4096", "m_MaxHold 256", "m_QSweep 4096", "m_Spectrum 256",
                              "m_freqPowerChainsAFreqs 209", "m_freqPowerChainsBFreqs 209", "m_freqPowerChannels 209"})
        for (const char* chain : {"_0[", "_1[", "_2["})
            header += Lines(field, ' ')[0] + chain + Lines(field, ' ')[1] + "],";
    EXPECT_EQ(lines[0], header + "nonArrayFieldsAndValues");
    const char* const settings =
        "m_NumChains=2 m_sampleRate=80 m_RBW=312.5 m_NumOfSamples=4096 m_averageSweepsValue=1 "
        "m_ChannelAverageCounter=0 m_isAverage=1 m_isMaxHold=1 m_SweepLen=4096 m_band=1 m_Bandwidth=80 m_currChain=3 "
        "m_currChannelIndex=1 m_currChannelNumber=42 m_currChannelFrequency=5210 m_noiseFloorLowBand=-90 "
        "m_noiseFloorHighBand=-91 m_noiseFloorUltraHighBand=-92 m_internalLnaGain=2 m_isPreLnaResistor=0";
    for (std::size_t at = 1; const std::string& setting : Lines(settings, ' '))
        EXPECT_TRUE(lines[at++].ends_with("," + setting)) << setting;
    std::ostringstream sample;
    sample << std::string(15, ',') << Engine().m_ISweep[0]->val[4095] << ',' << Engine().m_ISweep[1]->val[4095]
           << ",0,,,," << Engine().m_QSweep[0]->val[4095] << ',' << Engine().m_QSweep[1]->val[4095] << ",0,"
           << std::string(12, ',');
    EXPECT_EQ(lines[4096], sample.str());
    // Four tables of 15, 10, 38 and 19 lines stand before that of 80 MHz in the 5.2 GHz band.
    EXPECT_TRUE(lines[1 + 15 + 10 + 38 + 19 + 1].ends_with("," + Output("-get_power_per_chain A") + ",0,0,0," +
                                                           Output("-get_power_per_chain B") + ",0,42,42,0,"));
}

TEST_F(SnapshotTest, ALoadBringsResultsBackAndASaveBehindItGivesTheSameBytes) {
    const std::string text = Saved();
    const auto readOuts = [&] {
        std::string all;
        for (const char* key : {"-update_spectrum", "-update_maxhold", "-update_channel_average", "-update_histogram"})
            all += Output(key) + '\n';
        return all;
    };
    const std::string before = readOuts();
    Start("samples=4096");
    ForgetCalls();
    EXPECT_EQ(Load(text), "");
    EXPECT_EQ(Calls(), Texts{}) << "the radio is left alone";
    EXPECT_EQ(readOuts(), before);
    EXPECT_EQ(Output("-update_iq").find_first_not_of("0 \n"), std::string::npos) << "the samples stay in the file";
    Run("-save_all " + Path("c.csv"));
    EXPECT_EQ(Read("c.csv"), text);
    Run("-export_freq_power " + Path("powers.csv"));
    EXPECT_NE(Read("powers.csv").find("80MHz, 42 (5210 MHz), , "), std::string::npos);
    ExpectUsable("a load");
    Run("-save_all " + Path("d.csv"));
    EXPECT_NE(Read("d.csv"), text) << "a capture's samples take the place of the file's";
}

TEST_F(SnapshotTest, AFrontEndGetsItsValuesBackAndEachVariantReadsTheOthersFile) {
    const std::string plain = Saved();
    AddWeb();
    Texts sent;
    const auto send = [&](const std::string& line) {
        sent = Send(line);
        return m_answer.error;
    };
    send("-channel 1 -trigger_now");  // until then three noise floors are one too many
    EXPECT_EQ(send("-load_all " + Path("a.csv")), "");
    ASSERT_EQ(sent.size(), 2u);
    std::string settings;
    for (const std::string& setting : Lines(
             "m_RBW 312.5,m_AverageSweepsVal 1,m_ChannelAverageCounter 0,Average 1,MaxHold 1,m_SweepLen 4096,m_band 1,"
             "m_Bandwidth 80,m_currChain 3,m_currChannelNumber 42,m_currChannelFrequency 5210,m_noiseFloor_low -90,"
             "m_noiseFloor_high -91,m_noiseFloor_ultrahigh -92,internalLnaGain 2,isPreLnaResistorConnected 0,is_scan ",
             ','))
        settings +=
            R"({"parameter": ")" + NameOf(setting) + R"(","value": ")" + setting.substr(setting.find(' ') + 1) + "\"},";
    EXPECT_TRUE(sent[0].starts_with(R"(object {"type": "Load All Response", "data": [ )" + settings));
    EXPECT_TRUE(sent[1].starts_with(R"(object {"type": "Power Table Data")"));
    EXPECT_EQ(send("-save_all " + Path("w.csv") + ",1,0,1,1.5,3.14159265,6,7,8,9,10,11,12,-87.5,-88"), "");
    EXPECT_EQ(sent.at(0), Object("Save All Response", R"({"status": "Saved"})"));
    send("-load_all " + Path("w.csv"));
    EXPECT_NE(sent.at(0).find(R"("delay","value": "3.14159"},{"parameter": "is_multiple)"), std::string::npos);
    EXPECT_TRUE(sent.at(0).ends_with(R"({"parameter": "powerB","value": "-88"} ]})"));
    send("-save_all " + Path("w2.csv") + ",1");
    EXPECT_EQ(sent.at(0), Object("Save All Response", R"({"status": "ERROR: unexpected number of parameters"})"));
    EXPECT_FALSE(std::filesystem::exists(Path("w2.csv")));
    EXPECT_EQ(Load(Read("w.csv")), "");
    EXPECT_EQ(Load(plain), "");
    Write("zero.csv", With(plain, "SweepsValue=1", "SweepsValue=0"));
    const std::string refused = "Failed to load settings: parameter average sweeps is out of range [1...100]";
    EXPECT_NE(send("-load_all " + Path("zero.csv")).find(refused), std::string::npos);
    EXPECT_TRUE(sent.empty() || sent[0].find("Load All") == std::string::npos);
}

TEST_F(SnapshotTest, ABrokenFileIsRefusedAndTheSettingsOfBeforeStay) {
    const std::string text = Saved();
    for (const std::string change :
         {"m_RBW=312.5 m_RBX=312.5", "m_NumChains=2 m_NumChains=4", "m_NumChains=2 m_NumChains=-1",
          "m_NumChains=2 m_NumChains=two", "Samples=4096 Samples=4194305", "Samples=4096 Samples=99999999999",
          "m_RBW=312.5 m_RBW=1e-9", "m_RBW=312.5 m_RBW=nan", "m_RBW=312.5 m_RBW=300",
          "m_sampleRate=80 m_sampleRate=inf", "m_Bandwidth=80 m_Bandwidth=81", "m_currChain=3 m_currChain=7",
          "ChannelIndex=1 ChannelIndex=99", "ChannelIndex=1 ChannelIndex=-1", "LnaGain=2 LnaGain=6", "\n- \nx-",
          "\n- \nnan,-", "\n- \n-inf,-"}) {
        const std::string from = NameOf(change), to = change.substr(from.size() + 1);
        EXPECT_NE(Load(With(text, from, to)), "") << to;
        EXPECT_EQ(Engine().m_RBW, 312.5) << to;
        EXPECT_EQ(Engine().m_SampleRate, 80) << to;
        ExpectUsable(to);
    }
    std::filesystem::create_symlink(Path("a.csv"), Path("link.csv"));
    for (const char* key : {"-save_all ", "-load_all "})
        EXPECT_NE(Run(key + Path("link.csv")).error.find("is a link"), std::string::npos);
    EXPECT_NE(Run("-load_all " + Path("none.csv")).error.find("could not open file '" + Path("none.csv") + "'"),
              std::string::npos);
    Run("-save_all now.csv");
    EXPECT_NE(Read("now.csv").find("m_currChannelNumber=42"), std::string::npos);
}

TEST_F(SnapshotTest, AFullDiskLeavesTheOldSnapshotWholeAndIsTold) {
    const std::string text = Saved();
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{text.size() / 2, before.rlim_max};  // as a disk that takes half of it
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    Run("-maxhold false -trigger_now");
    const Answer answer = Run("-save_all " + Path("a.csv"));
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(answer.exitCode, 0) << "the answer doesn't tell";
    EXPECT_EQ(Read("a.csv"), text);
    EXPECT_NE(Read("log.txt").find("can't write '" + Path("a.csv") + "': File too large"), std::string::npos);
    const auto isPart = [](const auto& entry) { return OSAL::IsLeftOverPart(entry.path().filename().string()); };
    EXPECT_TRUE(std::ranges::none_of(std::filesystem::directory_iterator(m_folder), isPart));
    Run("-save_all " + Path("a.csv"));
    EXPECT_NE(Read("a.csv"), text);
}

TEST_F(SnapshotTest, CutFlippedAndOversizedFilesNeitherCrashNorHang) {
    const std::string text = Saved();
    for (std::size_t k = 0; k < 100; ++k) {
        Load(text.substr(0, k < 50 ? k * 97 : text.size() * k / 100));
        ExpectUsable("cut " + std::to_string(k));
    }
    std::mt19937 random(3);
    for (int k = 0; k < 50; ++k) {
        std::string flipped = text;
        for (int n = 0; n < 8; ++n)
            flipped[random() % 20000] ^= static_cast<char>(1u << random() % 8);
        Load(flipped);
        Run("-reset_config -reset_first_run_flags -rbw 312.5");  // settings may have come back as others
        ExpectUsable("flipped " + std::to_string(k));
    }
    std::string wide;
    for (int k = 0; k < 1000000; ++k)
        wide += "1,";
    EXPECT_EQ(Load("m_Average_0[1]," + wide + "\n" + wide + "m_NumChains=1\n"), "");
    ExpectUsable("wide");
}

TEST_F(SnapshotTest, ChannelsBeyondTheLastLineAreLeftOutWithOneWarning) {
    Start("samples=1024,bands=0+1+2");
    Run("-save_all " + Path("a.csv"));  // nothing is left out yet
    Run("-band 6-7 -bandwidth 320 -rbw 312.5");
    for (const char* channel : {"31", "63"})
        Run(std::string("-channel ") + channel + " -trigger_now");
    Run("-bandwidth 160 -channel 207 -trigger_now");  // line 209, the first without a cell
    Run("-save_all " + Path("a.csv"));
    EXPECT_TRUE(Lines(Read("a.csv"))[209].ends_with(",0,0,0,0,0,0,0,0,0,"));
    const std::string log = Read("log.txt");
    const std::string warning = "3 channels of the power table have no line in a snapshot";
    EXPECT_NE(log.find(warning), std::string::npos);
    EXPECT_EQ(log.find(warning.substr(2)), log.rfind(warning.substr(2)));
}

}  // namespace
