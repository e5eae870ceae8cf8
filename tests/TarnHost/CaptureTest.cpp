// What concerns captures: names, plans, folders, files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "Captures/CaptureFolder.h"
#include "Captures/CapturePlan.h"
#include "Console/History.h"
#include "Console/ResultTable.h"
#include "SampleReader.h"
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
    for (const std::string& name : {good + "1.txt", std::string("result.csv"), std::string("notes.txt"), "." + good})
        folder.Write(name, "");
    std::filesystem::create_directory(folder.Path() / (good + "folder"));
    std::filesystem::create_symlink("nowhere", folder.Path() / (good + "link"));
    const auto isWanted = [] { return true; };
    auto found = ListCaptures(folder.Path(), isWanted);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->files, std::vector<std::string>{good + "1.txt"});
    std::ranges::sort(found->skipped);
    EXPECT_EQ(found->skipped, (std::vector<std::string>{"'" + good + "folder': is a folder",
                                                        "'" + good + "link': can't be read: No such file or directory",
                                                        "'notes.txt': has no BAND_ in its name"}));
    for (int k = 0; k < 30; ++k)
        folder.Write("x" + std::to_string(k), "");
    found = ListCaptures(folder.Path(), isWanted);
    EXPECT_EQ(found->skippedCount, 33U);
    EXPECT_EQ(found->skipped.size(), 20U);
    EXPECT_FALSE(ListCaptures(folder.Path() / "missing", isWanted));
    EXPECT_FALSE(ListCaptures(folder.Path() / "notes.txt", isWanted));
    EXPECT_FALSE(ListCaptures(folder.Path(), [] { return false; }));
}

TEST(Folders, AResultThatIsNotOursOrNoFileIsRefusedBeforeTheWork) {
    const Support::TempFolder folder;
    const auto place = folder.Path() / "result.csv";
    const auto reasonOf = [&](ResultPlace options) {
        const auto check = CheckResultPlace(folder.Path(), options);
        return check ? std::string() : check.Reason();
    };
    EXPECT_EQ(reasonOf({}), "");
    folder.Write("result.csv", std::string(resultHeader) + "\n");
    EXPECT_EQ(reasonOf({}), "");
    folder.Write("result.csv", "my thesis");
    EXPECT_NE(reasonOf({}).find("--force"), std::string::npos);
    EXPECT_EQ(reasonOf({.overwrite = true}), "");
    std::filesystem::remove(place);
    std::filesystem::create_symlink("nowhere", place);
    EXPECT_NE(reasonOf({.overwrite = true}).find("it is a link"), std::string::npos);
    std::filesystem::remove(place);
    std::filesystem::create_directory(place);
    EXPECT_NE(reasonOf({.overwrite = true}).find("is a folder"), std::string::npos);
}

TEST(Folders, ABadLineIsNamedByItsNumber) {
    const Support::TempFolder folder;
    EXPECT_EQ(SampleFiles::BadLine(folder.Write("a", "1 ,2\n3 ,4\nfive ,6\n")), "line 3: I isn't a number");
    EXPECT_EQ(SampleFiles::BadLine(folder.Write("b", "1 ,2\n3 ,x\n")), "line 2: Q isn't a number");
    EXPECT_EQ(SampleFiles::BadLine(folder.Write("c", "1 ,2\n3 ,4")), "");
    EXPECT_EQ(SampleFiles::BadLine(folder / "missing"), "");
}

TEST(History, SurvivesItsShellAndLosesNoneOfAnothers) {
    const Support::TempFolder folder;
    const std::string file = folder / "state/tarn/history";
    EXPECT_TRUE(ReadHistory(file, 10).empty());
    for (const char* line : {"-band 5.2", "-trigger_now", "-band 5.2", "two\nlines"})
        AppendHistory(file, line);
    EXPECT_EQ(ReadHistory(file, 10), (std::vector<std::string>{"-trigger_now", "-band 5.2"}));
    EXPECT_EQ(ReadHistory(file, 1), std::vector<std::string>{"-band 5.2"});
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(file).permissions(), perms::owner_read | perms::owner_write);
    std::filesystem::rename(file, file + "2");
    std::filesystem::create_symlink(file + "2", file);
    AppendHistory(file, "-rbw 78.125");
    EXPECT_TRUE(ReadHistory(file, 10).empty()) << "a link is nobody's history";
    EXPECT_EQ(ReadHistory(file + "2", 10).size(), 2U);
}
