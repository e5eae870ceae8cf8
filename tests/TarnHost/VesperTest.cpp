// The burn-in desense test of the built program, without its load: files, verdicts and exit statuses.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "Program.h"
#include "Support/TempFolder.h"

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

TEST(Vesper, RefusesWhatItCannotRun) {
    const Support::TempFolder folder;
    const std::string config = folder.Write("test.cfg", "bw,20\n");
    const auto run = Tarn({"vesper", "--config", config, "--out", folder / "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("Failed to parse file"), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "out/junit.xml"));  // nothing was tested
    EXPECT_EQ(Tarn({"vesper", "--config", config}).status, 2);
    for (const auto& [option, value] : {std::pair{"--limit", "x"}, {"--limit", ""}, {"--margin", "nan"}})
        EXPECT_EQ(Tarn({"vesper", "--config", config, "--out", folder / "out", option, value}).status, 2) << option;
}

}  // namespace
