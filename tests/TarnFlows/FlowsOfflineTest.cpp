// Stored captures through "-read_adc_samples_from_file", end to end.
#include <sys/stat.h>

#include <cmath>
#include <numbers>

#include "FlowsTest.h"

namespace {

namespace fs = std::filesystem;

const std::string Header = "FILE_NAME, POWER, BAND, CH, BW, CHAIN,\n";
const std::string Good = "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run.txt";

class FlowsOfflineTest : public FlowsTest {
protected:
    FlowsOfflineTest() { fs::create_directory(m_folder / "in"); }
    /// A tone in the channel: `amplitude` codes, 5 MHz above the centre, at 40 MHz.
    static std::string Tone(double amplitude, int samples) {
        std::string text;
        for (int k = 0; k < samples; ++k) {
            const double phase = 2 * std::numbers::pi * 5.0 / 40.0 * k;
            text += std::to_string(std::lround(amplitude * std::cos(phase))) + " ," +
                    std::to_string(std::lround(amplitude * std::sin(phase))) + "\n";
        }
        return text;
    }
    Answer Analyze() { return Run("-read_adc_samples_from_file " + Path("in")); }
    /// The result's lines behind its header, sorted: a folder lists its files in no order.
    std::vector<std::string> Results() {
        const std::string text = Read("in/result.csv");
        EXPECT_TRUE(text.starts_with(Header)) << text;
        auto lines = Lines(text.substr(Header.size()));
        std::ranges::sort(lines);
        return lines;
    }
};

TEST_F(FlowsOfflineTest, EachFileIsMeasuredOnItsOwnTuning) {
    Start();
    Write("in/" + Good, Tone(1000, 98304));
    Write("in/CHAIN_B_x_BW_20_CHANNEL_11_BAND_2.4_.dat", Tone(100, 98304));
    Write("in/BAND_5.2_CHANNEL_36_BW_20_CHAIN_A.txt", Tone(1, 10));  // no "_" behind the chain
    Write("in/BAND_5.2", "");
    Write("in/RESULT.CSV", "");
    fs::create_directory(Path("in/BAND_5.2_CHANNEL_40_BW_20_CHAIN_A_folder"));
    ::mkfifo(Path("in/BAND_5.2_CHANNEL_44_BW_20_CHAIN_A_pipe").c_str(), 0600);
    const Answer answer = Run("-get_channel_average -read_adc_samples_from_file " + Path("in"));
    EXPECT_EQ(answer.exitCode, 0) << answer.error;
    EXPECT_EQ(answer.output, "false");  // the scan itself answers nothing
    const auto lines = Results();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(lines[0].starts_with(Good + ",")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with(",5.2,36,20,A,")) << lines[0];
    EXPECT_TRUE(lines[1].ends_with(",2.4,11,20,B,")) << lines[1];
    // A tone of 1000 codes has a power of 60 dB; what the chain's gain takes off is the engine's.
    const double expected =
        60.0 - LumenSpectrumAnalyzer::ManualGain(LumenSpectrumAnalyzer::ChipFamily::Pine, 0, 0, 1, "A", 36, 0);
    EXPECT_NEAR(std::stod(lines[0].substr(Good.size() + 1)), expected, 0.05);
    Analyze();
    EXPECT_EQ(Results(), lines);
}

TEST_F(FlowsOfflineTest, AShortFileEndsInSilenceNotInTheFileBefore) {
    Start("samples=8192");
    Write("in/" + Good, Tone(1000, 4096));
    Analyze();
    const auto alone = Results();
    ASSERT_EQ(alone.size(), 1u);
    for (int k = 0; k < 3; ++k)
        Write("in/BAND_2.4_CHANNEL_" + std::to_string(k + 1) + "_BW_20_CHAIN_A_.txt", Tone(30000, 8192));
    Analyze();
    EXPECT_EQ(std::ranges::count(Results(), alone[0]), 1);
}

TEST_F(FlowsOfflineTest, ABadFileEndsTheScanWithItsTextAndKeepsTheLinesSoFar) {
    using Row = std::array<std::string, 3>;  // name, text, error
    const Row rows[] = {
        {Good, "1 ,2\nx\n", "invalid stod argument"},
        {Good, "", "Received empty ADC Samples."},
        {Good, "0 ,0\n0 ,0\n", "Received empty ADC Samples."},
        {"BAND_7_CHANNEL_36_BW_20_CHAIN_A_", "", "Band 7 is not supported"},
        {"BAND_5.2_CHANNEL_x_BW_20_CHAIN_A_", "", "invalid stoi argument"},
    };
    Start("samples=8192");
    for (const auto& [name, text, error] : rows) {
        Write("in/" + name, text);
        const Answer answer = Analyze();
        EXPECT_NE(answer.exitCode, 0) << error;
        EXPECT_EQ(answer.error, error + "\n");
        EXPECT_EQ(Read("in/result.csv"), Header) << error;
        fs::remove(Path("in/" + name));
    }
    EXPECT_EQ(Run("-save_spectrum " + Path("file")).exitCode, 0);  // the file lock is free
}

TEST_F(FlowsOfflineTest, AFolderThatHoldsNothingOrIsALinkGetsNoResult) {
    Start();
    EXPECT_EQ(Analyze().exitCode, 0);
    EXPECT_FALSE(fs::exists(Path("in/result.csv")));
    EXPECT_EQ(Run("-read_adc_samples_from_file " + Path("none")).exitCode, 0);
    fs::create_directory_symlink(Path("in"), Path("link"));
    EXPECT_EQ(Output("-read_adc_samples_from_file " + Path("link")), "ERROR:File " + Path("link") + " is a link\n");
}

TEST_F(FlowsOfflineTest, AResultThatCannotBeWrittenLosesItsLinesButNotTheAnalysis) {
    Start("samples=8192");
    Write("in/" + Good, Tone(1000, 8192));
    const auto expectAnalysis = [&] {
        Streams::AppStreams::OpenLogFile(Path("log.txt"));  // anew
        EXPECT_EQ(Analyze().error, "");
        const std::string inLog = "can't write '" + Path("in/result.csv") + "': ";
        const auto log = Lines(Read("log.txt"));  // the header, then the file's line
        EXPECT_EQ(std::ranges::count_if(log, [&](const auto& line) { return line.find(inLog) != line.npos; }), 2);
        EXPECT_EQ(Engine().m_CenterFreq, 5180.0);
        EXPECT_EQ(Output("-update_spectrum").find("Failed"), std::string::npos);
    };
    fs::create_directory(Path("in/result.csv"));
    expectAnalysis();
    fs::remove(Path("in/result.csv"));
    ::mkfifo(Path("in/result.csv").c_str(), 0600);
    expectAnalysis();
    fs::remove(Path("in/result.csv"));
    Write("target", "mine");
    fs::create_symlink(Path("target"), Path("in/result.csv"));
    EXPECT_EQ(Analyze().error, "File " + Path("in/result.csv") + " is a link\n");
    EXPECT_EQ(Read("target"), "mine");
}

TEST_F(FlowsOfflineTest, RecordedWifiTrafficHasItsKnownPowers) {
    const char* captures = std::getenv("TARN_CAPTURES");
    if (!captures) GTEST_SKIP() << "TARN_CAPTURES names no folder";
    Start();
    fs::remove(m_folder / "in");
    fs::copy(fs::path(captures) / "wifi", m_folder / "in", fs::copy_options::recursive);
    ASSERT_EQ(Analyze().exitCode, 0);
    auto lines = Lines(Support::ReadText(fs::path(captures) / "expected.csv").substr(Header.size()));
    std::ranges::sort(lines);
    EXPECT_EQ(Results(), lines);
}

}  // namespace
