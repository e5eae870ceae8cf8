// Measurements and the shell of the built program: options, files, and levels against what the scenes promise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "Commands/CommandLine.h"
#include "Console/Present.h"
#include "Lines/ShellHelp.h"
#include "Program.h"
#include "RadioSetup.h"
#include "SettingsMemory.h"

namespace fs = std::filesystem;

namespace {

/// Channel power that `tarn measure` reads in one sweep; not a number when it doesn't.
double MeasuredDbm(const std::string& scene, const nlohmann::json& expected) {
    const auto run = Tarn({"measure", "--air", "sim:" + scene, "--band", expected["band"], "--channel",
                           std::to_string(expected["channel"].get<int>()), "--bandwidth",
                           std::to_string(expected["width_mhz"].get<int>()), "--chain", expected.value("chain", "A"),
                           "--sweeps", "1", "--peaks", "0", "--json"});
    const auto result = nlohmann::json::parse(run.out, nullptr, false);
    if (run.status != 0 || result.is_discarded() || !result["complete"]) return std::nan("");
    return result["channels"][0]["chains"][0]["power_dbm"];
}

}  // namespace

TEST(Measure, ReadsTheChannelPowersThatTheShippedScenesPromise) {
    int readings = 0;
    for (const std::string& scene : quayCommand::ShippedSceneNames()) {
        const auto expectations = nlohmann::json::parse(quayCommand::ShippedSceneText(scene).value())["expect"];
        for (const auto& expected : expectations) {
            if (expected["what"] != "channel_power" || expected.value("workload", false)) continue;
            EXPECT_NEAR(MeasuredDbm(scene, expected), expected["level_dbm"].get<double>(), 1.0) << scene << expected;
            ++readings;
        }
    }
    EXPECT_GE(readings, 15) << "the scenes lost their expectations";
}

TEST(Measure, AClippedConverterIsReportedUntilTheGainIsLower) {
    const Support::TempFolder folder;
    const std::string scene = (folder.Path() / "loud.json").string();
    std::ofstream(scene) << R"({"accessPoints":[{"band":"2.4","channel":6,"width_mhz":20,"level_dbm":-35}]})";
    const std::vector<std::string> command = {"measure", "--air", "sim:" + scene, "--channel", "6", "--chain", "AB"};
    const auto loud = Tarn(command);
    EXPECT_TRUE(Has(loud.out, "channel 6 chain B: the converter was overloaded in 10 of 10 sweeps")) << loud.out;
    auto lowered = command;
    lowered.insert(lowered.end(), {"--keys", "-internal_gain 5"});
    EXPECT_FALSE(Has(Tarn(lowered).out, "overloaded"));
}

TEST(Measure, WrongOptionsAreRefusedWithTheirValues) {
    struct Case {
        std::vector<std::string> options;
        std::string reason;
    };
    const Case cases[] = {{{"--band", "3"}, "2.4, 5.2, 6-7"},
                          {{"--bandwidth", "60"}, "20, 40, 80, 160, 320"},
                          {{"--chain", "C"}, "A, B, AB"},
                          {{"--rbw", "40"}, "39.0625, 78.125"},
                          {{"--channel", ""}, "--channel"},
                          {{"--csv", ""}, "--csv"},
                          {{"--picture", ""}, "--picture"},
                          {{"--keys", "-internal_gain 2 -BAND 5.2"}, "-BAND"},
                          {{"--keys", "-internal_gain 2 \"-ch\"annel 3"}, "-channel"},
                          {{"--keys", "-set_mcc"}, "-set_mcc"},
                          {{"--keys", "-noise_floor -90,-90,-90"}, "not what a measurement reports"},
                          {{"--keys", "-set_gain_from_file"}, "needs -gain_file_name"},
                          {{"--keys", "-gain_file_name x -internal_gain 1"}, "give one of the two"},
                          {{"--csv", "-", "--json"}, "standard output"},
                          {{"--margin", "-1"}, "--margin"},
                          {{"--bandwith", "20"}, "did you mean '--bandwidth'?"}};
    for (const char* key : {"-bandwidth 40", "-chain B", "-rbw 312.5", "-maxhold true", "-channel_average true",
                            "-reset_config", "-trigger_now"})
        EXPECT_EQ(TarnHost::ParseArguments({"measure", "--keys", key}).status, TarnHost::WrongUsage) << key;
    for (const auto& [options, reason] : cases) {
        std::vector<std::string> arguments = {"measure"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto request = TarnHost::ParseArguments(arguments);
        EXPECT_EQ(request.status, TarnHost::WrongUsage) << options[1];
        EXPECT_TRUE(Has(request.text, reason)) << request.text;
    }
    EXPECT_TRUE(TarnHost::ParseArguments({"measure", "--rbw", "39.06250", "--keys", "-internal_gain 2"}).command);
    const auto unknown = Tarn({"measure", "--keys", "-internal_gian 2"});
    EXPECT_TRUE(Has(unknown.err, "did you mean '-internal_gain'?")) << unknown.err;
}

TEST(Measure, FilesThatCanNotBeWrittenAreRefusedBeforeTheSweeps) {
    const Support::TempFolder folder;
    const std::string inside = (folder.Path() / "a.png").string();
    const std::string missing = (folder.Path() / "none" / "a.png").string();
    struct Case {
        std::vector<std::string> options;
        int status;
        std::string reason;
    };
    const Case cases[] = {
        {{"--picture", inside, "--csv", (folder.Path() / "." / "a.png").string()}, 2, "the same file"},
        {{"--picture", folder.Path() / "a.bmp"}, 2, ".png, .svg or .pdf"},
        {{"--picture", missing}, 1, "there is no folder"},
        {{"--csv", missing}, 1, "there is no folder"},
        {{"--csv", folder.Path()}, 1, "it is a folder"}};
    const fs::path journal = folder.Path() / "journal";
    for (const auto& [options, status, reason] : cases) {
        std::vector<std::string> arguments = {"measure", "--journal", journal.string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto run = Tarn(arguments);
        EXPECT_EQ(run.status, status) << run.err;
        EXPECT_TRUE(Has(run.err, reason)) << run.err;
        EXPECT_FALSE(fs::exists(journal)) << "the radio was opened";
    }
    const auto nothing = Tarn({"measure", "--channel", "99", "--json"});
    EXPECT_EQ(nothing.status, 1);
    const auto json = nlohmann::json::parse(nothing.out);
    EXPECT_EQ(json["complete"], false);
    EXPECT_TRUE(Has(json["trouble"], "channel 99 isn't in band 2.4")) << nothing.out;
}

TEST(Shell, AnswersAPipeAsThePluginDoesAndEndsWithItsStatus) {
    const auto run = Program({"shell"})
                         .Input(
                             "# a comment\n"
                             "-band 5.2 -channel 36\n"
                             "-trigger_now -update_peaks\n"
                             "help -rbw\n"
                             "!repeat 2 -get_channel_average\n"
                             "!status\n"
                             "-triger_now\n"
                             "nonsense\n"
                             "exit\n"
                             "-get_platform_info\n")
                         .Run();
    EXPECT_EQ(run.status, 1) << "a line failed";
    EXPECT_TRUE(Has(run.out, "1024\n98304\n20\n")) << run.out;
    EXPECT_TRUE(Has(run.out, "false\nfalse\n")) << run.out;
    EXPECT_TRUE(Has(run.out, "values: 39.0625 78.125 156.25 312.5\n")) << run.out;
    EXPECT_TRUE(Has(run.out, "settings -band 5.2 -channel 36\n")) << run.out;
    EXPECT_FALSE(Has(run.out, "tarn>")) << "a prompt is for people";
    EXPECT_EQ(run.err,
              "tarn: the reading keys of a line run before its trigger: send them on a line of their own\n"
              "tarn: Unrecognized command line option: -triger_now; did you mean '-trigger_now'?\n"
              "tarn: 'nonsense' isn't known here; help tells what is\n");
    EXPECT_EQ(Program({"shell"}).Input("quit").Run().status, 0);
}

TEST(Shell, TheStatusForgetsWhatALaterLineMadeUntrue) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"-BAND 5.2 -channel 36", "-rbw 78.125"}, "-band 5.2 -channel 36 -rbw 78.125"},
        {{"-band 5.2 -bandwidth 80 -channel 42", "-band 2.4"}, "-band 2.4"},
        {{"-bandwidth 40 -channel 3", "-bandwidth 20"}, "-bandwidth 20"},
        {{"-channel 3 -bandwidth 40"}, "-bandwidth 40 -channel 3"},
        {{"-band 5.2 -maxhold true", "-reset_config"}, "-maxhold true"},
        {{"-channel 11", "-mcc_profile DE -set_mcc"}, ""},
        {{"-channel 11 -reset_config"}, "-channel 11"},
        {{"-find_peaks 10", "-save_spectrum x", "-get_power_per_chain A", "-channel_average_counter 1,1,1"}, ""},
        {{"-noise_floor -94,-93,-92"}, "-noise_floor -94,-93,-92"},
    };
    for (const auto& [lines, expected] : cases) {
        TarnSession::SettingsMemory memory;
        for (const std::string& line : lines)
            memory.Take(line);
        EXPECT_EQ(memory.Text(), expected) << lines[0];
    }
    EXPECT_TRUE(TarnSession::ReadsBeforeItsTrigger("-get_power_per_chain A -TRIGGER_NOW"));
    EXPECT_FALSE(TarnSession::ReadsBeforeItsTrigger("-channel 6 -trigger_now"));
    EXPECT_FALSE(TarnSession::ReadsBeforeItsTrigger("-update_peaks"));
}

TEST(Shell, HelpBeginsShortAndListsTheKeysWhenAsked) {
    EXPECT_LT(std::ranges::count(TarnHost::HelpText(), '\n'), 24) << "it fits a terminal";
    EXPECT_FALSE(Has(TarnHost::HelpText(), "-save_IQ"));
    EXPECT_TRUE(Has(TarnHost::HelpText("keys"), "  -save_IQ FILE"));
}

TEST(Shell, AnswersAreMadeReadableOnlyWhereTheyAreUnderstood) {
    EXPECT_EQ(TarnHost::Readable("-get_power_per_chain A", "-65.9582"), "-65.96 dBm in the channel\n");
    EXPECT_EQ(TarnHost::Readable("-rbw 78.125 -get_power_per_chain A", "-65.9582"), "-65.9582\n");
    EXPECT_EQ(TarnHost::Readable("-get_power_per_chain A\t-update_spectrum", "-65.9582"), "-65.9582\n");
    EXPECT_EQ(TarnHost::Readable("-channel 6 -trigger_now", "1024\n98304\n20\n131072"),
              "captured: 1024 bins from 98304 samples\n");
    EXPECT_EQ(TarnHost::Readable("-update_histogram", "3 4\n1 2\n2 2\n-5 7"),
              "counts in 2 buckets from -5 to 7 ADC codes\nI and Q  3 4\nI        1 2\nQ        2 2\n");
}
