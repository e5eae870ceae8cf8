#include "TestRadio.h"

#include <nlohmann/json.hpp>

#include "OSAL/Process.h"

using namespace radiotest;
using nlohmann::json;

namespace {

Tuning TuningOf(const json& entry) {
    const std::string band = entry["band"];
    const unsigned width = entry["width_mhz"];
    Tuning tuning;
    tuning.band = band == "2.4" ? 0 : band == "5.2" ? 1 : 2;
    while (20u << tuning.bandwidth < width)
        ++tuning.bandwidth;
    tuning.channel = entry["channel"];
    tuning.selector = entry["chain"] == "A" ? 1 : 2;
    return tuning;
}

/// Power of the strongest of the bins of 39.0625 kHz near a frequency: mean of the blocks' direct transforms.
double PeakDb(const Samples& x, double offsetMhz, double rate) {
    const auto size = static_cast<std::size_t>(rate / 0.0390625);
    double best = 0.0;
    for (int k = -1; k <= 1; ++k) {
        const double bin = std::round(offsetMhz / 0.0390625) + k;
        double power = 0.0;
        for (std::size_t b = 0; b < x.size() / size; ++b)
            power += std::norm(ToneOf(x, bin / static_cast<double>(size), b * size, size));
        best = std::max(best, power / static_cast<double>(x.size() / size));
    }
    return Db(best);
}

double CentreMhz(const Tuning& tuning) {
    if (tuning.band == 0 && tuning.channel == 14) return 2484.0;
    return (tuning.band == 0 ? 2407.0 : tuning.band == 1 ? 5000.0 : 5950.0) + 5.0 * tuning.channel;
}

TEST(Scenes, EachShippedSceneReadsWhatItPromisesInEverySingleCapture) {
    EXPECT_EQ(quayCommand::ShippedSceneNames(), (std::vector<std::string>{"laptop", "office", "quiet", "usb3"}));
    for (const auto& name : quayCommand::ShippedSceneNames()) {
        const auto scene = json::parse(quayCommand::ShippedSceneText(name).value());
        ASSERT_FALSE(scene["expect"].empty()) << name;
        for (const auto* seed : {"1", "2", "31337"}) {
            UseRadio(std::string("seed=") + seed, "sim:" + name);
            for (const auto& entry : scene["expect"]) {
                quayCommand::SetRadioWorkload(entry.value("workload", false));
                const auto tuning = TuningOf(entry);
                const auto x = Capture(tuning).at(0);
                const double rate = RateMhz(tuning.bandwidth);
                const double reading = entry["what"] == "peak"
                                           ? PeakDb(x, entry["frequency_mhz"].get<double>() - CentreMhz(tuning), rate)
                                           : ChannelPowerDb(x, entry["width_mhz"], rate);
                const double gain = GainDb(tuning, entry["chain"].get<std::string>().c_str());
                EXPECT_NEAR(reading - gain, entry["level_dbm"].get<double>(), 1.0) << name << " " << entry;
            }
        }
    }
    EXPECT_FALSE(quayCommand::ShippedSceneText("nowhere"));
}

TEST(Scenes, TheSameSeedGivesTheSameSamplesAndAnotherSeedOthers) {
    const auto run = [](const char* adapter) {
        UseRadio(adapter, "sim:office");
        return std::vector{Capture({0, 0, 6}).at(0), Capture({0, 0, 6, 3}).at(1), Capture({0, 0, 6}).at(0),
                           Capture({2, 4, 159}).at(0)};
    };
    const auto first = run("seed=5"), again = run("seed=5"), other = run("seed=6");
    EXPECT_EQ(first, again);
    for (std::size_t k = 0; k < first.size(); ++k)
        EXPECT_NE(first[k], other[k]);
    EXPECT_NE(first[0], first[2]) << "time goes on from capture to capture";
}

TEST(Scenes, SourcesComeAndGoWithTheSceneTimeAndTheWorkload) {
    // Ten captures a second. Silent, on at 0.2 s, up 20 dB from 0.3 to 0.5 s in a ramp, off at 0.6 s, again from 0.8 s.
    UseScene(R"({"capture_interval_s": 0.1, "tones": [
        {"frequency_mhz": 2439.5, "level_dbm": -70, "repeat_s": 0.8, "changes": [
            {"at_s": 0, "on": false}, {"at_s": 0.2}, {"at_s": 0.3}, {"at_s": 0.5, "offset_db": 20, "ramp": true},
            {"at_s": 0.6, "on": false}]},
        {"frequency_mhz": 2434.5, "level_dbm": -60, "while": "workload"},
        {"frequency_mhz": 2442, "level_dbm": -65, "while": "no_workload"}]})",
             "samples=4096");
    constexpr double off = -999;
    const auto expectLevel = [](const Samples& x, double offsetMhz, double expected) {
        const double level = ToneDbm(x, offsetMhz, {});
        EXPECT_TRUE(expected == off ? level < -95.0 : std::abs(level - expected) <= 0.2) << level;
    };
    for (const double expected : {off, off, -70.0, -70.0, -60.0, -50.0, off, off, off, off, -70.0})
        expectLevel(Capture({}).at(0), 2.5, expected);
    for (const bool running : {false, true, false}) {
        EXPECT_TRUE(quayCommand::SetRadioWorkload(running));
        const auto x = Capture({}).at(0);
        expectLevel(x, -2.5, running ? -60.0 : off);
        expectLevel(x, 5.0, running ? off : -65.0);
    }
}

TEST(Scenes, AWorkloadIsHeardWhileItsProcessRunsUnlessTheSetUpSaysOtherwise) {
    const Folder folder;
    const auto air = "sim:" + folder.Write("t.json", R"({"tones": [
        {"frequency_mhz": 2434.5, "level_dbm": -60, "while": "workload"}]})");
    const auto hears = [&](quayCommand::Workload workload) {
        quayCommand::RadioSetup setup{"samples=4096", air, "", ""};
        setup.workload = workload;
        EXPECT_EQ(ReasonOf(setup), "accepted");
        return ToneDbm(Capture({}).at(0), -2.5, {}) > -61.0;
    };
    std::filesystem::copy("/bin/sleep", folder / "bit");
    OSAL::ProcessInformation program;
    ASSERT_TRUE(OSAL::StartProcess(folder.Path().string(), "bit", "60", program));
    EXPECT_TRUE(hears(quayCommand::Workload::Auto));
    EXPECT_FALSE(hears(quayCommand::Workload::Off));
    EXPECT_TRUE(OSAL::TerminateHandle(program));
    EXPECT_TRUE(hears(quayCommand::Workload::On));
    const bool isAnothers = OSAL::IsProcessRunning("bit", false);  // of somebody else on this machine
    EXPECT_TRUE(isAnothers || !hears(quayCommand::Workload::Auto));
}

TEST(Scenes, ABadSceneIsRefusedWithItsPlaceAndReason) {
    const Folder folder;
    const auto network = [](const std::string& fields) { return R"({"accessPoints": [{)" + fields + "}]}"; };
    const std::string point = R"("band": "5.2", "channel": 36, "width_mhz": 20, "level_dbm": -50)";
    for (const auto& [text, reason] : std::vector<std::pair<std::string, std::string>>{
             {"{\n  \"tones\": [\n    {,}\n]}", "3:6: syntax error while parsing object key"},
             {"", "1:1: syntax error"},
             {"[]", "the document: isn't an object"},
             {R"({"colour": 1})", "colour: unknown key; the keys here are accessPoints, capture_interval_s, "},
             {R"({"tones": {}})", "tones: isn't an array"},
             {R"({"tones": [3]})", "tones[0]: isn't an object"},
             {R"({"tones": [{"level_dbm": -60}]})", "tones[0].frequency_mhz: is missing"},
             {R"({"tones": [{"frequency_mhz": "5", "level_dbm": -60}]})", "tones[0].frequency_mhz: isn't a number"},
             {network(point + R"(}, {"band": "5.2", "channel": 36, "width_mhz": 20, "level_dbm": 99)"),
              "accessPoints[1].level_dbm: 99 is outside -200 to 20"},
             {network(point + R"(, "level_dbm": 1)"), "the key \"level_dbm\" stands twice in one object"},
             {network(R"("band": "5", "channel": 36, "width_mhz": 20, "level_dbm": -50)"),
              "accessPoints[0].band: \"5\" is none of 2.4, 5.2, 6-7"},
             {network(R"("band": "2.4", "channel": 6, "width_mhz": 80, "level_dbm": -50)"),
              "accessPoints[0].channel: band 2.4 has no channel 6 of 80 MHz"},
             {network(R"("band": "2.4", "channel": 6.5, "width_mhz": 20, "level_dbm": -50)"),
              "accessPoints[0].channel: isn't a whole number"},
             {network(point + R"(, "frames": [{"length_us": 42}])"),
              "accessPoints[0].frames[0].length_us: isn't a multiple of 4, the length of a symbol"},
             {R"({"tones": [{"frequency_mhz": 2440, "level_dbm": -60, "changes": [{"at_s": 2}, {"at_s": 1}]}]})",
              "tones[0].changes[1].at_s: isn't later than the change before"},
             {R"({"noise": [{"points": [{"mhz": 5, "dbm_per_mhz": -9}]}]})",
              "noise[0].points: needs two points or more"},
             {R"({"noise_figure_db": [1, 2, 3]})", "noise_figure_db: is neither a number nor an array of 2"},
             {R"({"noise_figure_db": [1, -2]})", "noise_figure_db[1]: -2 is outside 0 to 60"},
             {R"({"expect": [{"what": "luck"}]})", "expect[0].what: \"luck\" is none of channel_power, peak"},
         }) {
        const auto path = folder.Write("bad.json", text);
        const auto expected = "air: " + path + ": " + reason;
        EXPECT_EQ(ReasonOf({"", "sim:" + path, "", ""}).substr(0, expected.size()), expected);
    }
    EXPECT_EQ(
        ReasonOf({"", "sim:nowhere", "", ""}),
        "air: nowhere: neither a readable scene file of at most 1 MB nor one of the shipped scenes laptop, office, "
        "quiet, usb3");
    EXPECT_EQ(ReasonOf({"", "antenna", "", ""}), "air: antenna: isn't sim, sim:SCENE or file:PATH");
    const auto text = quayCommand::ShippedSceneText("laptop").value();
    const auto end = text.rfind('}');
    for (std::size_t length = 0; length < end; length += 7)
        EXPECT_NE(ReasonOf({"", "sim:" + folder.Write("cut.json", text.substr(0, length)), "", ""}), "accepted")
            << length;
}

}  // namespace
