// The burn-in desense test of the built program, without its load: files, verdicts and exit statuses.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "OSAL/Time.h"
#include "Program.h"
#include "Support/TempFolder.h"
#include "Support/WorkloadLock.h"

namespace {

constexpr const char* Config =
    "bw,20\nrbw,312.5\nchainMode,A->B\niterations,2\nbitcfg,Workload.bitcfg\ndisableBit,true\n"
    "LBChannels,[1;6;99]\nHBChannels,[36]\nUHBChannels,[]\n";

TEST(Vesper, JudgesEachChannelAndLeavesItsFiles) {
    const Support::TempFolder folder;
    const std::string config = folder.Write("test.cfg", Config), out = folder / "out";
    const std::vector<std::string> command{"vesper", "--air", "sim:quiet", "--config", config, "--out", out};
    const auto with = [&](std::vector<std::string> more) {
        std::vector<std::string> all = command;
        all.insert(all.end(), more.begin(), more.end());
        return Tarn(all);
    };
    const auto passed = with({"--limit", "-60", "--idle-baseline"});
    EXPECT_EQ(passed.status, 0) << passed.err;
    EXPECT_NE(passed.out.find("2.4 GHz channel 99    left out"), std::string::npos) << passed.out;
    EXPECT_NE(passed.out.find("verdict: PASS"), std::string::npos) << passed.out;
    const auto json = nlohmann::json::parse(folder.Read("out/result.json"), nullptr, false);
    ASSERT_EQ(json.value("channels", nlohmann::json::array()).size(), 3u);
    for (const auto& channel : json["channels"]) {
        EXPECT_EQ(channel["levels"].size(), 2u) << channel;
        EXPECT_FALSE(!(std::abs(channel.value("rise_db", 99.0)) < 1.0)) << channel;  // nothing loads the machine
    }
    EXPECT_EQ(folder.Read("out/summary.csv").substr(0, 8), "Channel,");
    EXPECT_NE(folder.Read("out/bins.csv").find("\n36, HB, B, 5170, "), std::string::npos);
    EXPECT_NE(folder.Read("out/messages.log").find(">> Sampling channel '6' (2437 MHz), chain B, iteration 2..."),
              std::string::npos);
    const std::string report = folder.Read("out/report.html");
    EXPECT_EQ(report.find("http"), std::string::npos);  // nothing from elsewhere
    EXPECT_NE(report.find("class='PASS'>PASS"), std::string::npos);

    EXPECT_EQ(with({"--limit", "-150"}).status, 4);
    EXPECT_NE(folder.Read("out/junit.xml").find("tests=\"4\" failures=\"3\" errors=\"0\" skipped=\"1\""),
              std::string::npos);
    EXPECT_EQ(with({"--limit", "-150", "--fail-on", "none"}).status, 0);
    // A radio that fails in the middle costs its channel, not the others.
    EXPECT_EQ(with({"--limit", "-60", "--fault", "ReadCaptureEx:3"}).status, 1);
    EXPECT_NE(folder.Read("out/junit.xml").find("failures=\"0\" errors=\"1\""), std::string::npos);
}

/// The shipped load, so light that it disturbs nobody. @return the variable that names its folder
std::string PlaceLightLoad(const Support::TempFolder& folder) {
    std::filesystem::create_directory(folder / "load");
    for (const char* program : {"bit", "MemTest64"})
        std::filesystem::copy(std::filesystem::path(TARN_PROGRAM).parent_path() / "../share/tarn/workload" / program,
                              folder / "load");
    folder.Write("load/Workload.bitcfg", "cpu 1\nload_percent 5\nmemtest_mib 1\nlimit_s 60\n");
    return "TARN_WORKLOAD_DIR=" + (folder / "load");
}

TEST(Vesper, AHostThatIsKilledLeavesNothingOfItsLoad) {
    const Support::WorkloadLock lock;
    const Support::TempFolder folder;
    const std::string load = PlaceLightLoad(folder);  // whoever the program starts inherits the variable
    const auto processes = [&] {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc"))
            count += Support::ReadText(entry.path() / "environ").find(load) != std::string::npos;
        return count;
    };
    std::string config = Config;
    config.replace(config.find("true"), 4, "false");
    const auto run = Program({"vesper", "--config", folder.Write("test.cfg", config), "--out", folder / "out"})
                         .With(load)
                         .Signal(SIGKILL, [&] { return processes() >= 3; })  // the host, bit and what bit starts
                         .Run();
    EXPECT_EQ(run.status, 128 + SIGKILL) << run.err;
    EXPECT_NE(run.err.find("BurnInTest process started."), std::string::npos) << "as it came";
    const OSAL::Stopwatch watch;
    while (processes() > 0 && watch.ElapsedMs() < 5000)
        OSAL::SleepMs(20);
    EXPECT_EQ(processes(), 0);
}

/// Takes 16 s, nearly all of them waiting for the load.
TEST(Vesper, TheWorkedExampleGivesWhatTheManualShows) {
    const Support::WorkloadLock lock;
    const Support::TempFolder folder;
    const auto manual = Support::CodeLines(TARN_ROOT "/docs/desense.md");
    const auto starts = [](const char* text) {
        return [=](const std::string& line) { return line.starts_with(text); };
    };
    const auto config = std::find_if(std::ranges::find_if(manual, starts("bw,")) + 1, manual.end(), starts("bw,"));
    const auto table = std::find_if(config, manual.end(), starts("channel  "));
    const auto end = std::find_if(table, manual.end(), starts("verdict: "));
    ASSERT_NE(end, manual.end());
    const auto joined = [](auto from, auto to) {
        std::string text;
        for (; from != to; ++from)
            text += *from + "\n";
        return text;
    };
    std::string settings = joined(config, config + 9);
    const std::vector<std::string> line{
        "--air", "sim:laptop", "vesper", "--config", folder.Write("test.cfg", settings), "--out", folder / "result"};
    auto first = line, second = line;
    first.emplace_back("--idle-baseline");
    const auto run = Program(first).With(PlaceLightLoad(folder)).Run();
    EXPECT_EQ(run.status, 4) << run.err;
    EXPECT_EQ(run.out, joined(table, end + 1));
    // The other platform's lines up to the desense, with the scene's load without a load.
    for (const auto& [from, to] : {std::pair{"A->B", "AB"}, {"false", "true"}})
        settings.replace(settings.find(from), std::string(from).size(), to);
    folder.Write("test.cfg", settings);
    second.insert(second.end(), {"--workload", "on", "--adapter", "device=0x2725"});
    const auto other = Program(second).Run();
    for (auto row = end + 1; row != manual.end(); ++row)
        EXPECT_NE(other.out.find(row->starts_with(" ") ? *row : row->substr(0, 58)), std::string::npos) << *row;
}

TEST(Vesper, RefusesWhatItCannotRun) {
    const Support::TempFolder folder;
    const std::string config = folder.Write("test.cfg", "bw,20\n");
    const auto run = Tarn({"vesper", "--config", config, "--out", folder / "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("Failed to parse file"), std::string::npos) << run.err;
    std::string bare = Config;
    bare.replace(bare.find("[36]"), 4, "136");
    const auto refused = Tarn({"vesper", "--config", folder.Write("bare.cfg", bare), "--out", folder / "out"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("HBChannels: the channels must stand in brackets"), std::string::npos) << refused.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "out/junit.xml"));  // nothing was tested
    EXPECT_EQ(Tarn({"vesper", "--config", config}).status, 2);
    for (const auto& [option, value] : {std::pair{"--limit", "x"}, {"--limit", ""}, {"--margin", "nan"}})
        EXPECT_EQ(Tarn({"vesper", "--config", config, "--out", folder / "out", option, value}).status, 2) << option;
}

}  // namespace
