// What concerns captures: names, plans, folders, files.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "Captures/CaptureFolder.h"
#include "Captures/CapturePlan.h"
#include "Captures/SampleFile.h"
#include "Console/Progress.h"
#include "Console/ResultTable.h"
#include "Support/TempFolder.h"

using namespace TarnHost;

namespace {

/// Supports what a list says.
class FakeNvm final : public quayCommand::NvmCommands {
public:
    void SetMetadata(std::string) override {}
    void GetMacAddress(std::string&) override {}
    bool IsBandEnabled(std::uint32_t band) override { return !disabledBands.contains(band); }
    bool IsChannelSupported(std::uint32_t channel, std::uint32_t, std::uint32_t) override {
        return !missingChannels.contains(channel);
    }
    void SetMcc(std::uint16_t, bool) override {}
    void ApplyMcc() override {}

    std::set<std::uint32_t> disabledBands;
    std::set<std::uint32_t> missingChannels;
};

std::set<std::pair<std::uint32_t, std::uint32_t>> BandsAndWidths(const std::vector<PlanEntry>& plan) {
    std::set<std::pair<std::uint32_t, std::uint32_t>> result;
    for (const PlanEntry& entry : plan)
        result.insert({entry.band, entry.bandwidth});
    return result;
}

}  // namespace

TEST(Names, TellWhichParameterLacks) {
    const std::pair<const char*, const char*> cases[] = {
        {"BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt", ""},
        {"x_CHAIN_B_BW_20_CHANNEL_6_BAND_2.4_", ""},
        {"CHANNEL_36_BW_20_CHAIN_A_.txt", "has no BAND_ in its name"},
        {"BAND_5.2_channel_36_BW_20_CHAIN_A_.txt", "has no CHANNEL_ in its name"},
        {"BAND_5.2_CHANNEL_36_BW__CHAIN_A_.txt", "has no value behind BW_ in its name"},
        {"BAND_5.2_CHANNEL_36_BW_20_CHAIN_", "has no value behind CHAIN_ in its name"},
        {"BAND_5.2_CHANNEL_36_BW_20_CHAIN_A.txt", "has no \"_\" behind the value of CHAIN_ in its name"},
    };
    for (const auto& [name, expected] : cases)
        EXPECT_EQ(MissingParameter(name), expected) << name;
}

TEST(Names, OfPlannedCapturesHaveAllParameters) {
    const PlanEntry entry{1, 3, 50, 2};
    EXPECT_EQ(CaptureFileName(entry, 7), "BAND_5.2_CHANNEL_50_BW_160_CHAIN_B_007.txt");
    EXPECT_EQ(MissingParameter(CaptureFileName({2, 4, 31, 1}, 12345)), "");
}

TEST(CapturePlan, FollowsChipCardAntennasAndCountry) {
    FakeNvm nvm;
    const auto all = MakeCapturePlan({26, 4, 3, &nvm});
    EXPECT_EQ(BandsAndWidths(all).size(), 11U);
    for (const std::uint32_t chain : {1U, 2U})
        EXPECT_EQ(std::ranges::count(all, chain, &PlanEntry::chain) * 2, std::ssize(all));

    EXPECT_FALSE(BandsAndWidths(MakeCapturePlan({30, 4, 3, &nvm})).contains({2, 4}));   // no 320 MHz on this chip
    EXPECT_FALSE(BandsAndWidths(MakeCapturePlan({26, 64, 3, &nvm})).contains({1, 3}));  // nor 160 on this card
    EXPECT_EQ(BandsAndWidths(MakeCapturePlan({9, 2, 3, &nvm})).size(), 2U);             // 2.4 GHz at 20 and 40
    for (const PlanEntry& entry : MakeCapturePlan({26, 4, 2, &nvm}))
        EXPECT_EQ(entry.chain, 2U);

    nvm.disabledBands = {0, 2};
    nvm.missingChannels = {36, 40, 100, 149};
    const auto rest = MakeCapturePlan({26, 4, 1, &nvm});
    EXPECT_EQ(BandsAndWidths(rest).size(), 4U);
    EXPECT_EQ(rest.front(), (PlanEntry{1, 0, 44, 1}));  // the lowest that is left
}

TEST(SampleFiles, HoldOneSampleALineInTheFormThatAnalysisReads) {
    EXPECT_EQ(SampleText({{24, -32768, 0}, {-1, 32767, -0.0}}), "24 ,-1\n-32768 ,32767\n0 ,0\n");
}

TEST(Folders, ListWhatAnalysisTakesAndWhyItSkips) {
    const Support::TempFolder folder;
    const std::string good = "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_";
    std::ofstream(folder.Path() / (good + "1.txt"));
    std::ofstream(folder.Path() / "result.csv");
    std::ofstream(folder.Path() / "notes.txt");
    std::filesystem::create_directory(folder.Path() / (good + "folder"));
    std::filesystem::create_symlink("nowhere", folder.Path() / (good + "link"));
    const auto entries = ListCaptures(folder.Path());
    ASSERT_TRUE(entries);
    std::map<std::string, std::string> reasons;
    for (const auto& entry : *entries)
        reasons[entry.name] = entry.skipReason;
    const std::map<std::string, std::string> expected = {
        {good + "1.txt", ""},
        {"notes.txt", "has no BAND_ in its name"},
        {good + "folder", "is a folder"},
        {good + "link", "can't be read: No such file or directory"},
    };
    EXPECT_EQ(reasons, expected);
    EXPECT_FALSE(ListCaptures(folder.Path() / "missing"));
    EXPECT_FALSE(ListCaptures(folder.Path() / "notes.txt"));
}

TEST(ResultCounter, CountsOnlyWhatIsWrittenAfterItBegan) {
    const Support::TempFolder folder;
    const auto path = folder.Path() / "result.csv";
    std::ofstream(path) << "header\nold\nold\n";
    ResultCounter counter(path);
    EXPECT_EQ(counter.Count(), 0U);
    EXPECT_FALSE(counter.IsFresh());
    std::ofstream(path) << "header\n";
    EXPECT_EQ(counter.Count(), 0U);
    EXPECT_TRUE(counter.IsFresh());
    std::ofstream(path, std::ios::app) << "one\ntwo\nthr";
    EXPECT_EQ(counter.Count(), 2U);
    std::ofstream(path, std::ios::app) << "ee\n";
    EXPECT_EQ(counter.Count(), 3U);
}
