// Texts in and out: command lines, scripts, records, tables.
#include <gtest/gtest.h>

#include "Commands/CommandLine.h"
#include "Console/Progress.h"
#include "Console/ResultTable.h"
#include "Console/TextWidth.h"
#include "Lines/AirName.h"
#include "Lines/KeyLine.h"
#include "Lines/ShellHelp.h"
#include "Lines/ShellQuote.h"
#include "Lines/Shorten.h"
#include "Lines/Suggest.h"
#include "Support/TempFolder.h"

using namespace TarnHost;

TEST(Script, ACommentBeginsWhereATokenCouldBegin) {
    const std::pair<const char*, const char*> cases[] = {
        {"-band 5.2 # the upper one", "-band 5.2"},
        {"# nothing else", ""},
        {"   \t # indented", ""},
        {"", ""},
        {"-save_spectrum take#1.txt", "-save_spectrum take#1.txt"},
        {R"(-save_spectrum "a #b" # c)", R"(-save_spectrum "a #b")"},
        {R"(-save_spectrum x" #"y#z #w)", R"(-save_spectrum x" #"y#z)"},
        {R"(-save_spectrum "never closed # data  )", R"(-save_spectrum "never closed # data  )"},
        {"-trigger_now\t#tab", "-trigger_now"},
        {"  -trigger_now  ", "-trigger_now"},
    };
    for (const auto& [line, expected] : cases)
        EXPECT_EQ(StripComment(line), expected) << line;
}

TEST(Script, APathIsQuotedUnlessNoQuotingCanSayIt) {
    EXPECT_EQ(QuotePath("my captures"), "\"my captures\"");
    EXPECT_EQ(QuotePath("-band"), "\"./-band\"");  // would be taken for the key
    EXPECT_FALSE(QuotePath("a\"b"));
    EXPECT_FALSE(QuotePath(""));
}

constexpr const char* threeResults =
    "FILE_NAME, POWER, BAND, CH, BW, CHAIN,\n"
    "b,x.txt,-65.586,5.2,42,80,A,\n"
    "two\nlines,-70,6-7,37,20,B,\n"
    "a.txt,-121.25,2.4,6,20,AB,\n"
    "half.txt,-70,5.2";

TEST(Table, NamesMayHoldCommasAndLineEndsAndALineBeingWrittenWaits) {
    const auto rows = ParseResults(threeResults);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].file, "b,x.txt");
    EXPECT_EQ(rows[0].power, "-65.586");
    EXPECT_EQ(rows[1].file, "two\nlines");
    EXPECT_EQ(rows[1].band, "6-7");
    EXPECT_EQ(rows[2].chain, "AB");
    EXPECT_TRUE(ParseResults("").empty());
}

TEST(Table, PowersLineUpAtThePointUnderAHeaderWithUnits) {
    EXPECT_EQ(LayOutTable(ParseResults(threeResults), 0),
              "FILE       POWER dBm  BAND GHz  CHANNEL  WIDTH MHz  CHAIN\n"
              "a.txt       -121.25        2.4        6         20     AB\n"
              "b,x.txt      -65.586       5.2       42         80      A\n"
              "two?lines    -70           6-7       37         20      B\n");
}

TEST(Table, ANarrowTerminalShortensNamesInTheirMiddleOnly) {
    EXPECT_EQ(ShortenName("BAND_5.2_CHANNEL_36.txt", 11), "BAND_…6.txt");
    EXPECT_EQ(ShortenName("short", 5), "short");
    EXPECT_EQ(ShortenName("äöüßäöüß", 5), "äö…üß");
    const std::string long_name(100, 'n');
    const std::string table = LayOutTable({{long_name, "-1", "5.2", "36", "20", "A"}}, 80);
    for (std::size_t start = 0; start < table.size(); start = table.find('\n', start) + 1)
        EXPECT_EQ(DisplayWidth(table.substr(start, table.find('\n', start) - start)), 80U);
    EXPECT_NE(LayOutTable({{long_name, "-1", "5.2", "36", "20", "A"}}, 0).find(long_name), std::string::npos);
}

TEST(Table, NumbersInNamesSortByValue) {
    const std::vector<std::string> ordered = {"", "CH_1_x", "CH_06_x", "CH_6_x", "CH_6_y", "CH_11_x", "CH_x", "CHx"};
    for (std::size_t a = 0; a < ordered.size(); ++a) {
        for (std::size_t b = 0; b < ordered.size(); ++b) {
            EXPECT_EQ(ComesBefore(ordered[a], ordered[b]), a < b) << ordered[a] << " " << ordered[b];
        }
    }
}

TEST(Table, ANameForgesNoRow) {
    const std::vector<ResultRow> rows = {{"a\nb,\"x\"", "-70", "5.2", "36", "20", "A"},
                                         {"c", "-71", "5.2", "36", "20", "A"}};
    EXPECT_EQ(ResultText(rows),
              std::string(resultHeader) + "\n\"a?b,\"\"x\"\"\",-70,5.2,36,20,A,\nc,-71,5.2,36,20,A,\n");
    EXPECT_EQ(ParseResults(ResultText({rows[1]})).at(0).power, "-71");
    EXPECT_EQ(DisplayWidth("\xFFx\xC3"), 3U);  // stray bytes stand alone
}

TEST(Suggest, TheNearestNameIsMeantOrNone) {
    const std::vector<std::string> names = {"measure", "simulate", "run"};
    EXPECT_EQ(DidYouMean("mesure", names), "; did you mean 'measure'?");
    EXPECT_EQ(DidYouMean("MEASRUE", names), "; did you mean 'measure'?");
    EXPECT_EQ(DidYouMean("rum", names), "; did you mean 'run'?");
    for (const std::string& word : {std::string("zebra"), std::string(), std::string(70, 'm')})
        EXPECT_EQ(DidYouMean(word, names), "") << word;
    EXPECT_EQ(*ReadAir("laptop"), "sim:laptop");
    EXPECT_EQ(*ReadAir("/tmp"), "file:/tmp");
    EXPECT_EQ(*ReadAir("/nowhere"), "/nowhere");
    EXPECT_EQ(ReadAir("lapto").Reason(), "there is no air 'lapto'; did you mean 'laptop'?");
    EXPECT_EQ(CommandText({"run", "it's", ""}), "tarn run 'it'\\''s' ''");
}

TEST(Shorten, ALongSentenceKeepsItsStartAndCountsTheRest) {
    EXPECT_EQ(Shortened("as it is"), "as it is");
    std::string tokens = "unknown:";
    for (int k = 0; k < 40000; ++k)
        tokens += " -x" + std::to_string(k);
    EXPECT_TRUE(Shortened(tokens).ends_with(" -x149 ... and 39850 more")) << Shortened(tokens);
    std::string word = "a";
    for (int k = 0; k < 1000; ++k)
        word += "\u00fc";
    EXPECT_EQ(Shortened(word), word.substr(0, 799) + "...");
    EXPECT_TRUE(Shortened(word + " b c").ends_with("\u00fc... and 2 more"));
}

TEST(Complete, AHugeFolderIsShortenedButItsCommonStartIsThatOfAll) {
    const Support::TempFolder folder;
    for (int k = 0; k < 250; ++k)
        folder.Write("capture" + std::to_string(k), "");
    folder.Write("card", "");
    const Completion completion = Complete("-save_spectrum " + (folder / "c"));
    EXPECT_EQ(completion.candidates.size(), 200U);
    EXPECT_EQ(completion.more, 51U);
    EXPECT_EQ(completion.start, folder / "ca");
    EXPECT_EQ(Complete("-get_power_per_chain ").start, "");
    EXPECT_EQ(Complete("-trigger_n").candidates, std::vector<std::string>{"-trigger_now"});
}

TEST(Progress, TellsRateAndRestOnceSomethingIsDone) {
    using Seconds = std::chrono::duration<double>;
    EXPECT_EQ(ProgressText(0, 10, Seconds(3)), "0 of 10 files");
    EXPECT_EQ(ProgressText(5, 10, Seconds(2)), "5 of 10 files, 2.5 files/s, 2 s left");
    EXPECT_EQ(ProgressText(10, 10010, Seconds(1)), "10 of 10010 files, 10.0 files/s, 17 min left");
    EXPECT_EQ(ProgressText(12, 10, Seconds(1)), "12 of 10 files, 12.0 files/s, 0 s left");
}

TEST(Arguments, LinesBehindTheMarkArriveByteForByte) {
    const auto request = ParseArguments({"run", "--web", "--", "-band 5.2", "", "[a,b]", "info", "--record", "--"});
    ASSERT_TRUE(request.command) << request.text;
    const auto& options = std::get<RunOptions>(*request.command);
    EXPECT_EQ(options.lines, (std::vector<std::string>{"-band 5.2", "", "[a,b]", "info", "--record", "--"}));
    EXPECT_TRUE(options.isFrontEnd);
    EXPECT_FALSE(options.record);
}

TEST(Arguments, CommonOptionsStandBeforeOrBehindTheCommand) {
    for (const auto& arguments : {std::vector<std::string>{"--adapter", "hw=9", "--log=x", "analyse", "f"},
                                  std::vector<std::string>{"analyse", "f", "--adapter", "hw=9", "--log=x"},
                                  std::vector<std::string>{"analyse", "--log=x", "--adapter=hw=9", "--", "f"}}) {
        const auto request = ParseArguments(arguments);
        ASSERT_TRUE(request.command) << request.text;
        EXPECT_EQ(std::get<AnalyseOptions>(*request.command).folder, "f");
        EXPECT_EQ(request.host.radio.adapter, "hw=9");
        EXPECT_EQ(request.host.logPath, "x");
    }
}

TEST(Arguments, WrongUsageIsStatusTwoWithAReason) {
    const std::vector<std::string> cases[] = {
        {"analyse"},
        {"analyse", "a", "b"},
        {"bogus"},
        {"--bogus"},
        {"run"},
        {"run", "--script", "x", "--", "-trigger_now"},
        {"run", "-trigger_now"},
        {"simulate", "f", "--count", "0"},
        {"simulate", "f", "--count", "many"},
        {"simulate", "f", "--scene", "office", "--air", "sim"},
        {"info", "--adapter"},
        {"info", "extra"},
    };
    for (const auto& arguments : cases) {
        const auto request = ParseArguments(arguments);
        EXPECT_FALSE(request.command) << arguments[0];
        EXPECT_EQ(request.status, WrongUsage) << arguments[0];
        EXPECT_FALSE(request.text.empty());
    }
}

TEST(Arguments, EveryCommandHasHelpWithExamples) {
    for (const std::string command : {"analyse", "run", "simulate", "info", "measure", "shell"}) {
        const auto request = ParseArguments({command, "--help"});
        EXPECT_EQ(request.status, Success);
        EXPECT_NE(request.text.find("tarn " + command), std::string::npos) << request.text;
        EXPECT_NE(request.text.find("Examples:"), std::string::npos);
        EXPECT_NE(ParseArguments({}).text.find(command), std::string::npos);
    }
}
