// The burn-in desense test on stored air, in both variants: the two CSV files byte by byte, the messages, the settings
// and what the workload does to a test.
#include <cmath>
#include <iterator>
#include <regex>

#include "FlowsTest.h"

namespace {

constexpr unsigned Bins = 1024;
constexpr int Files = 3;
constexpr double Gain = 7 * 6 + 67;  ///< dB: the adapter's at 2.4 GHz, whatever the channel and the chain
constexpr const char* OtherPlatform = ",device=0x1234";

double Db(double power) {
    return 10.0 * std::log10(power);
}

std::string Text(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}
std::string General(double value) {
    return Text("%g", value);
}
std::string Fixed(double value) {
    return Text("%f", value);
}

class VesperTest : public FlowsTest {
protected:
    ~VesperTest() override { ::unsetenv("TARN_WORKLOAD_DIR"); }

    /// Three captures, heard in turn by each chain of each sweep. Two pulses half a block apart make the spectrum of
    /// capture j exactly (1/2)^2 / 4^j in its even bins and (1/4)^2 / 4^j in the odd ones.
    void StorePulses() {
        std::filesystem::create_directory("air");
        for (int j = 0; j < Files; ++j)
            StoreCapture("air/" + std::to_string(j) + ".txt", {{Bins / 2 - 1, 128 >> j}, {Bins - 1, 384 >> j}}, 0);
        m_air = "file:" + Path("air");
    }
    /// Pulses, and a tone of whole codes 10 MHz below the centre.
    void StoreCapture(const std::string& name, std::vector<std::pair<unsigned, int>> pulses, int tone) {
        std::string text;
        for (unsigned n = 0; n < Bins; ++n) {
            constexpr int Cosine[] = {1, 0, -1, 0};
            int i = tone * Cosine[n % 4], q = -tone * Cosine[(n + 3) % 4];
            for (const auto& [at, height] : pulses)
                if (at == n) i += height;
            text += std::to_string(i) + " ," + std::to_string(q) + "\n";
        }
        Write(name, text);
    }
    void StartFlows(const std::string& adapter, const std::string& faults = "") {
        Place("hw=30,samples=1024,bands=0" + adapter, faults);
        AddWeb();
        m_web->m_vesper.m_burnInInitWait = 0;
    }
    std::string Line(const std::string& line, bool plain) {
        Send(line, plain);
        return m_answer.output;
    }
    /// What a line sends, the times of day replaced by TIME.
    Texts Send(const std::string& line, bool plain = false) {
        Texts sent = FlowsTest::Send(line, plain);
        for (std::string& text : sent)
            text = std::regex_replace(text, std::regex(R"(\d\d:\d\d:\d\d)"), "TIME");
        return sent;
    }
    static std::string Message(const std::string& text) {
        return Object("Add Vesper Test Message Response", R"({"timestamp": "TIME", "message": ")" + text + R"("})");
    }

    // A stand-in for the workload, under a name that nothing else on the machine bears.
    void PlaceWorkload(const std::string& script) {
        static int number = 0;
        m_tool = "tw" + std::to_string(::getpid()) + "_" + std::to_string(++number);
        m_web->m_workload.m_burnInName = m_tool;
        m_web->m_workload.m_memTestName = m_tool + "m";
        ::setenv("TARN_WORKLOAD_DIR", m_folder.c_str(), 1);
        if (script.empty()) return;
        Write(m_tool, "#!/bin/sh\n" + script);
        std::filesystem::permissions(Path(m_tool), std::filesystem::perms::owner_all);
        ::mkfifo(Path("hold").c_str(), 0600);
    }
    /// Waits for a writer that never comes, in a shell without a child: a fork bears the tool's name until its exec.
    static constexpr const char* Lasting = "echo \"$PWD|$*\" >started\n: <hold\n";
    bool Started() const {
        for (int k = 0; k < 500 && !Read("started").ends_with('\n'); ++k)
            OSAL::SleepMs(10);
        return Read("started").ends_with('\n');
    }

    std::string m_tool;
    const std::string m_stopped = Object("Stop Vesper Test Response", R"({"status": "Success"})");
};

/// Both files of a test of the plain variant by closed forms: 14 channels, two iterations, sweeps of known powers.
class Expectation {
public:
    Expectation(bool gln, int mode) : m_gln(gln), m_mode(mode) {
        int heard = 0;
        const auto hear = [&](int channel, int slot, int i) {
            m_scales[channel][slot][i] = std::pow(4.0, -(heard++ % Files));
        };
        for (int channel = 1; channel <= 14; ++channel)
            for (int k = 0; k < 2 * Slots(); ++k)
                mode == 1 ? hear(channel, k % 2, k / 2) : hear(channel, k / 2, k % 2);
    }
    int Slots() const { return m_mode == 0 ? 1 : 2; }

    std::string Summary() const {
        std::string csv =
            "Channel,WiFI De-sense [dB], Band, Spur Detected, Channel Freq, Spur Value, BB Freq[Center], Chain\n";
        for (int channel = 1; channel <= 14; ++channel) {
            const double a = Average(channel, 0), b = Average(channel, Slots() - 1);
            const double value = m_gln ? (a + b) / 2 : std::max(a, b);
            csv += std::to_string(channel) + ", " + General(value + 121.0) + ", 2.4 GHz\n";
        }
        return csv;
    }
    std::string AllBins(const std::string& time) const {
        std::string csv =
            "Channel,Band,Chain,Frequency,Average [dBm/39KHz RBW],Peak [dBm/39KHz RBW],RBW,BW,Trigger Time\n";
        for (int channel = 1; channel <= 14; ++channel)
            for (int slot = 0; slot < Slots(); ++slot)
                for (int k = 0; k < 512; ++k) {
                    const double power = k % 2 == 0 ? 0.25 : 0.0625;
                    const auto& [first, second] = m_scales.at(channel)[slot];
                    double most = std::max(first, second);
                    // Nothing clears the held maximum between a channel's two chains.
                    if (m_mode == 2 && slot == 1)
                        most = std::max({most, m_scales.at(channel)[0][0], m_scales.at(channel)[0][1]});
                    const double mean =
                        m_gln ? (Db(power * first) + Db(power * second)) / 2 : Db(power * (first + second) / 2);
                    const double start = channel == 14 ? 2474 : 2397 + 5 * channel;
                    csv += std::to_string(channel) + ", LB, " + (slot == 0 ? "A" : "B") + ", " +
                           General(start + k * 0.0390625) + ", " + General(mean - Gain) + ", " +
                           General(Db(power * most) - Gain) + ", 39.0625, 20, " + time + "\n";
                }
        return csv;
    }

private:
    /// Of a channel and slot, over both iterations. A bin 8 kHz above 2460 MHz, an odd one, counts for nothing.
    double Average(int channel, int slot) const {
        const double odd = channel >= 9 && channel <= 12 ? 255 : 256;
        double sum = 0;
        for (const double scale : m_scales.at(channel)[slot])
            sum += m_gln ? (256 * Db(0.25 * scale) + odd * Db(0.0625 * scale)) / (256 + odd)
                         : (256 * 0.25 + odd * 0.0625) * scale / (256 + odd);
        return (m_gln ? sum / 2 : Db(sum / 2)) - Gain;
    }

    bool m_gln;
    int m_mode;
    std::map<int, std::array<std::array<double, 2>, 2>> m_scales;  ///< by channel, slot, iteration
};

TEST_F(VesperTest, BothFilesAreExactOnEveryPlatformInEveryChainMode) {
    StorePulses();
    for (const bool gln : {true, false})
        for (const auto& [mode, text] : {std::pair{0, "A"}, {1, "AB"}, {2, "A->B"}}) {
            SCOPED_TRACE(std::string(text) + (gln ? " on GLN" : " elsewhere"));
            StartFlows(gln ? "" : OtherPlatform);
            EXPECT_EQ(m_web->m_vesper.m_vesperIterations, gln ? 25 : 10);
            EXPECT_EQ(m_web->m_vesper.m_vesperChainMode, gln ? 2 : 1);
            const std::string settings = std::string(" -vesper_iterations 2 -set_chain_mode ") + text;
            EXPECT_EQ(Line("-start_vesper_test -vesper_disable_bit TRUE" + settings, true),
                      "Vesper test was finished successfully.");
            const Expectation expected(gln, mode);
            Line("-export_vesper_result " + Path("summary.csv") + " -dump_vesper_data " + Path("bins.csv"), true);
            EXPECT_EQ(Read("summary.csv"), expected.Summary());
            const std::string bins = Read("bins.csv");
            const std::string time = bins.substr(bins.size() - 20, 19);
            EXPECT_TRUE(std::regex_match(time, std::regex(R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d)"))) << time;
            EXPECT_TRUE(bins == expected.AllBins(time)) << bins.substr(0, 400);
            EXPECT_FALSE(m_web->m_vesperTestInProgress);
        }
}

TEST_F(VesperTest, ThePlainVariantTellsEverySweepAndKeepsTheMessages) {
    StorePulses();
    StartFlows("");
    const Texts sent = Send("-start_vesper_test -vesper_disable_bit true -vesper_iterations 1", true);
    ASSERT_EQ(sent.size(), 32u);  // three, 14 channels on two chains, and the two of the stop
    EXPECT_EQ(sent[0], "output [TIME] >> Starting test...");
    EXPECT_EQ(sent[1], "output [TIME] >> Triggering ADC samples...");
    EXPECT_EQ(sent[3], "output [TIME] >> Sampling channel '1' (2412 MHz), chain B, iteration 1...");
    EXPECT_EQ(sent[29], "output [TIME] >> Sampling channel '14' (2484 MHz), chain B, iteration 1...");
    EXPECT_EQ(sent[30], "output [TIME] >> Test stopped.");
    EXPECT_EQ(sent[31], m_stopped);
    EXPECT_EQ(Send("-vesper_save_test_messages " + Path("messages.log"), true), Texts{});
    EXPECT_EQ(Lines(Read("messages.log")), m_web->m_vesperMessages);
    EXPECT_EQ(Lines(Read("messages.log")).size(), 31u);
    std::filesystem::create_symlink("messages.log", "link");
    for (const char* key : {"-vesper_save_test_messages ", "-dump_vesper_data ", "-export_vesper_result "})
        EXPECT_EQ(Line(key + std::string("link"), false), "ERROR:File link is a link\n");
}

TEST_F(VesperTest, AFrontEndDrivesTheTestAndHearsOfSpursResultsAndGraphs) {
    StoreCapture("air.txt", {{Bins - 1, 8}}, 1000);
    m_air = "file:" + Path("air.txt");
    StartFlows(OtherPlatform);
    Line("-set_chain_mode A -vesper_iterations 2 -vesper_disable_bit true -maxhold true -channel_average true", false);
    Line("-start_vesper_test", false);
    EXPECT_EQ(Line("-update_spectrum", false), "ERROR:Failed updating spectrum\n");  // not told apart as elsewhere
    const double flat = 64.0 / Bins / Bins, tone = 1e6 + flat;
    const std::string spur =
        "A Spur found in Channel: 6 freq: 2427, Chain: A,  Spur Value: " + General(Db(tone) - Gain) +
        ", BB Freq: -10, Spur Local Average: " + General(Db(flat) - Gain);
    const std::string body = R"({"numOfBins": "1024","Band": "0","Channel": "6","Chain": "A","Frequency": "2437")";
    const auto sampling = [](int n) {
        return Message("Sampling channel '6' (2437 MHz), chain A, iteration " + std::to_string(n) + "...");
    };
    EXPECT_EQ(Send("-channel 6 -channel_average_counter 0,0,0 -vesper_current_iteration 1 -trigger_now"),
              (Texts{sampling(1), Message(spur), Object("Trigger Response Vesper", body + "}")}));
    const std::string peak = Fixed(Db(tone) - Gain), average = Fixed(Db((tone + 511 * flat) / 512) - Gain);
    EXPECT_EQ(Send("-channel_average_counter 1,1,1 -vesper_current_iteration 2 -trigger_now"),
              (Texts{sampling(2), Message(spur), Message("Max Peak = " + peak), Message("Average Power = " + average),
                     Object("Trigger Response Vesper",
                            body + R"(,"MaxPeak": ")" + peak + R"(","PowerAverage": ")" + average + "\"}")}));

    Line("-export_vesper_result " + Path("summary.csv"), false);
    const std::string group = ", 2427.000000, " + peak + ", -10.000000, A";
    EXPECT_EQ(Lines(Read("summary.csv"))[1],
              "6, " + General(std::stod(average) + 121.0) + ", 2.4 GHz, 1" + group + group);

    const Texts graph = Send("-vesper_get_channel_data 6,0");
    ASSERT_EQ(graph.size(), 1u);
    EXPECT_EQ(std::ranges::count(graph[0], ','), 2 * 1023 + 4);
    EXPECT_EQ(Line("-vesper_get_channel_data 36", false),
              "ERROR:Incorrect number of values: expected 2 but received 1\n");
    // A pause keeps what was measured, a start doesn't.
    Line("-stop_vesper_test", false);
    Line("-resume_vesper_test", false);
    EXPECT_EQ(m_web->m_vesperStore.m_vesperResults.size(), 1u);
    Line("-start_vesper_test", false);
    EXPECT_TRUE(m_web->m_vesperStore.m_vesperResults.empty());
    EXPECT_TRUE(m_web->m_vesperStore.m_vesperSpurs.empty());
}

TEST_F(VesperTest, WithBothChainsTheLastIterationTellsBoth) {
    StorePulses();
    StartFlows("");
    Line("-set_chain_mode AB -vesper_iterations 1 -vesper_disable_bit true -maxhold true -channel_average true", false);
    Line("-chain AB -start_vesper_test", false);
    const auto level = [&](double power) { return Fixed(Db(power) - Gain); };
    const double mean = std::sqrt(0.25 * 0.0625);  // of the dB values
    const std::string peakA = level(0.25), peakB = level(0.0625), a = level(mean), b = level(mean / 4);
    const Texts sent = Send("-vesper_current_iteration 1 -channel_average_counter 0,0,0 -trigger_now");
    ASSERT_EQ(sent.size(), 4u);
    EXPECT_EQ(sent[1], Message("Max Peak A = " + peakA + ", Max Peak B = " + peakB));
    EXPECT_EQ(sent[2], Message("Average Power A = " + a + ", Average Power B = " + b));
    EXPECT_TRUE(sent[3].ends_with(R"(,"MaxPeakA": ")" + peakA + R"(","MaxPeakB": ")" + peakB +
                                  R"(","PowerAverageA": ")" + a + R"(","PowerAverageB": ")" + b + "\"}}"))
        << sent[3];
}

TEST_F(VesperTest, SettingsOutOfRangeAreRefusedAndChangeNothing) {
    StartFlows("");
    for (const char* line :
         {"-vesper_iterations 1", "-vesper_iterations 100", "-vesper_set_delay 0", "-vesper_set_delay 100"})
        EXPECT_EQ(Line(line, false), "") << line;
    for (const auto& [line, text] :
         {std::pair{"-vesper_iterations 0", "parameter number of iterations is out of range [1...100]"},
          {"-vesper_current_iteration 101", "parameter current iteration is out of range [1...100]"},
          {"-vesper_set_delay 101", "parameter delay is out of range [0...100]"},
          {"-set_chain_mode BA", "Chain mode BA is not valid"},
          {"-vesper_disable_bit Yes", "Invalid flag: yes"}})
        EXPECT_EQ(Line(line, false), std::string("ERROR:") + text + "\n");
    EXPECT_EQ(m_web->m_vesper.m_vesperIterations, 100);
    EXPECT_EQ(m_web->m_vesper.m_vesperDelay, 100);
    m_web->m_clearMaxHoldPending = m_web->m_clearAveragePending = false;
    Line("-vesper_current_iteration 2", false);
    EXPECT_FALSE(m_web->m_clearMaxHoldPending || m_web->m_clearAveragePending);
    Line("-vesper_current_iteration 1", false);
    EXPECT_TRUE(m_web->m_clearMaxHoldPending && m_web->m_clearAveragePending);
}

TEST_F(VesperTest, AConfigurationFileSetsTheTestAndTellsItsChannels) {
    StartFlows("");
    const Texts lines{"LBChannels,[1;14;36]", "HBChannels,[36]", "UHBChannels,[]", "bw,20",          "rbw,312.5kHz",
                      "chainMode,A->B",       "iterations,7x",   "bitcfg,A b.cfg", "disableBit,TRUE"};
    const auto text = [](const Texts& all, const char* end) {
        std::string joined;
        for (const std::string& line : all)
            joined += line + end;
        return joined;
    };
    Write("test.cfg", text(lines, "\r\n") + "more,1\n");
    const std::string all = R"({"value": "Scan All Channels","frequency": "NA"})";
    EXPECT_EQ(Send("-vesper_set_config_file " + Path("test.cfg")),
              Texts{Object("Vesper Settings Response",
                           R"({"bw": "20", "rbw": "312.5kHz", "chainMode": "A->B", "iterations": "7x", "channels": [)"
                           R"({"band": "2.4","bandwidths": [{"bandwidth": "20","channels": [)" +
                               all + R"(,{"value": "1","frequency": "2412"},{"value": "14","frequency": "2484"}]},)" +
                               R"({"bandwidth": "40","channels": [)" + all + "]}]}]}")});
    EXPECT_EQ(m_web->GetLmnSA()->m_RBW, 312.5);
    EXPECT_EQ(m_web->m_vesper.m_vesperIterations, 7);
    EXPECT_EQ(m_web->m_vesper.m_bitcfgFile, "A b.cfg");
    EXPECT_TRUE(m_web->m_vesper.m_burnInDisabled);

    const auto changed = [&](std::size_t at, const std::string& line) {
        Texts other = lines;
        other[at] = line;
        return text(other, "\n");
    };
    for (const auto& [content, reason] :
         {std::pair{text({lines.begin(), lines.end() - 1}, "\n"), "Failed to parse file"},
          {text({"huh,1", "bw,20"}, "\n"), "Failed to parse file"},
          {changed(3, "bw"), "Failed to parse file"},
          {changed(3, ""), "Failed to parse file"},
          {std::string("\0\x01\xff,\n", 5), "Failed to parse file"},
          {changed(3, "Bw,20") + "bw,20\n", "Invalid parameter name"},
          {changed(3, "rbw,39.0625"), "Invalid bandwidth"},  // the width is missing
          {changed(7, "bw,20"), "Filename is empty!"}}) {
        Write("bad.cfg", content);
        EXPECT_EQ(Line("-vesper_set_config_file " + Path("bad.cfg"), false), std::string("ERROR:") + reason + "\n")
            << content;
    }
    std::filesystem::create_symlink("test.cfg", "link.cfg");
    EXPECT_EQ(Line("-vesper_set_config_file link.cfg", false), "ERROR:File link.cfg is a link\n");
    EXPECT_EQ(Line("-vesper_set_config_file missing.cfg", false), "ERROR:Failed to parse file\n");
}

TEST_F(VesperTest, TheWorkloadRunsWhileTheTestDoesAndIsGoneBehindIt) {
    StartFlows("");
    PlaceWorkload(Lasting);
    EXPECT_EQ(
        Send("-start_vesper_test"),
        (Texts{Object("Clear Vesper Test Messages", "{}"), Message("Starting test..."),
               Message("BurnInTest process started."), Message("Waiting 0 seconds for BurnInTest initialization..."),
               Message("Triggering ADC samples..."),
               Object("Start Triggers Message",
                      R"({"NumOfIterations": "25","ChainMode": "A->B","Bandwidth": "20","RBW": "39.062500"})")}));
    ASSERT_TRUE(Started());
    std::string programs;
    OSAL::GetModuleDirectory(programs);
    EXPECT_EQ(Read("started"), m_folder.string() + "|-T -R -C " + programs + "Workload.bitcfg\n");
    // A second start ends the one that runs.
    const OSAL::ProcessInformation before = m_web->m_workload.m_burnInProcess;
    const Texts again = Send("-start_vesper_test");
    EXPECT_EQ(Texts(again.begin() + 2, again.begin() + 5),
              (Texts{Message("BurnInTest is already running."), Message("Terminating BurnInTest..."),
                     Message("BurnInTest process started.")}));
    EXPECT_NE(m_web->m_workload.m_burnInProcess.processId, before.processId);
    EXPECT_EQ(Send("-stop_vesper_test"),
              (Texts{Message("Terminating BurnIntest..."), Message("BurnInTest was terminated successfuly."),
                     Message("Test stopped."), m_stopped}));
    EXPECT_FALSE(OSAL::IsProcessRunning(m_tool, false));
    EXPECT_EQ(Send("-stop_vesper_test").size(), 3u);  // nothing runs: the rest all the same
    // A host that forgets to stop.
    Line("-start_vesper_test", false);
    m_web->DeInit();
    EXPECT_FALSE(OSAL::IsProcessRunning(m_tool, false));
}

TEST_F(VesperTest, AWorkloadThatCannotStartAbortsTheTest) {
    StartFlows("");
    PlaceWorkload("");
    const Texts stopped{Message("BurnInTest was terminated successfuly."), Message("Test stopped."), m_stopped};
    for (const auto& [key, first, code] : {std::tuple{"-start_vesper_test", "Starting test...", "2"},
                                           {"-resume_vesper_test", "Resuming test...", "13"}}) {
        const std::string text = std::string("Failed to start BurnInTest process. Error code: ") + code;
        Texts sent = Send(key);
        if (sent[0] == Object("Clear Vesper Test Messages", "{}")) sent.erase(sent.begin());
        Texts expected{Message(first), Message(text), Message("Aborting test...")};
        expected.insert(expected.end(), stopped.begin(), stopped.end());
        EXPECT_EQ(sent, expected);
        EXPECT_EQ(m_answer.output, "ERROR:" + text + "\n");
        EXPECT_FALSE(m_web->m_vesperTestInProgress);
        Write(m_tool, "not executable");
    }
}

TEST_F(VesperTest, AWorkloadThatDiesAtOnceOrIgnoresTheEndLeavesTheTestSound) {
    StorePulses();
    StartFlows("");
    for (const char* script : {"exit 1\n", "trap '' TERM\necho >started\n: <hold\n"}) {
        PlaceWorkload(script);
        Line("-start_vesper_test", false);
        EXPECT_TRUE(m_web->m_vesperTestInProgress);
        if (std::string(script).starts_with("trap"))
            ASSERT_TRUE(Started());
        else
            OSAL::SleepMs(300);
        const Texts sent = Send("-stop_vesper_test");
        EXPECT_EQ(sent[sent.size() - 2], Message("Test stopped."));
        EXPECT_FALSE(OSAL::IsProcessRunning(m_tool, false));
    }
}

TEST_F(VesperTest, ARadioThatFailsEndsThePlainTestAndItsLoadAndKeepsWhatWasMeasured) {
    StorePulses();
    StartFlows("", "ReadCaptureEx:5");
    PlaceWorkload(Lasting);
    const Texts sent = Send("-start_vesper_test -vesper_iterations 2 -set_chain_mode A", true);
    EXPECT_NE(m_answer.exitCode, 0);
    EXPECT_TRUE(m_answer.output.starts_with("ERROR:simulated fault")) << m_answer.output;
    EXPECT_EQ(std::ranges::count(sent, "output [TIME] >> Aborting test..."), 1);
    EXPECT_FALSE(m_web->m_vesperTestInProgress);
    EXPECT_FALSE(OSAL::IsProcessRunning(m_tool, false));
    Line("-export_vesper_result " + Path("summary.csv"), true);
    EXPECT_EQ(Lines(Read("summary.csv")).size(), 3u);  // channels 1 and 2
}

}  // namespace
