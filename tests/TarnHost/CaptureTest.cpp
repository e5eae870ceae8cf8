// What concerns captures: names, plans, folders, files.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "Captures/CaptureFolder.h"
#include "Captures/CapturePlan.h"
#include "Console/Progress.h"
#include "Console/ResultTable.h"
#include "Support/TempFolder.h"

using namespace TarnHost;

namespace {

std::vector<PlanEntry> PlanOf(std::uint32_t hwType, std::uint32_t cardType, std::uint32_t antennaMask,
                              const std::set<std::uint32_t>& disabledBands = {},
                              const std::set<std::uint32_t>& missingChannels = {}) {
    quayCommand::AdapterDescription adapter;
    adapter.hwType = hwType;
    adapter.cardType = cardType;
    adapter.antennaMask = antennaMask;
    return *MakeCapturePlan(adapter, [&](const quayCommand::RadioTuning& tuning) {
        return OSAL::Outcome<bool>(!disabledBands.contains(tuning.band) && !missingChannels.contains(tuning.channel));
    });
}

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
    const auto all = PlanOf(26, 4, 3);
    EXPECT_EQ(BandsAndWidths(all).size(), 11U);
    for (const std::uint32_t chain : {1U, 2U})
        EXPECT_EQ(std::ranges::count(all, chain, &PlanEntry::chain) * 2, std::ssize(all));
    EXPECT_FALSE(BandsAndWidths(PlanOf(30, 4, 3)).contains({2, 4}));   // no 320 MHz on this chip
    EXPECT_FALSE(BandsAndWidths(PlanOf(26, 64, 3)).contains({1, 3}));  // nor 160 on this card
    EXPECT_EQ(BandsAndWidths(PlanOf(9, 2, 3)).size(), 2U);             // 2.4 GHz at 20 and 40
    for (const PlanEntry& entry : PlanOf(26, 4, 2))
        EXPECT_EQ(entry.chain, 2U);

    const auto rest = PlanOf(26, 4, 1, {0, 2}, {36, 40, 100, 149});
    EXPECT_EQ(BandsAndWidths(rest).size(), 4U);
    EXPECT_EQ(rest.front(), (PlanEntry{1, 0, 44, 1}));  // the lowest that is left
    const auto failed = MakeCapturePlan({}, [](const auto&) { return OSAL::Refusal{"no answer"}; });
    EXPECT_EQ(failed.Reason(), "no answer");
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
