#include <gtest/gtest.h>

#include "Publisher/ListenerConfiguration.h"
#include "Support/TempFolder.h"

namespace fs = std::filesystem;
using Publisher::ListenerConfiguration;

namespace {
constexpr const char* usual =
    "[QuayListener]\r\nFILE = x.jsonl ; where\r\n[QuayPubilsher]\r\nOUTPUT_TYPE = 1 ; on\r\n"
    "RESOURCE_NAME=old\r\nmore = 1\r\n";
constexpr const char* listener = "[QuayListener]\nFILE = x.jsonl ; where\n\n\n[QuayPubilsher]\n";
}  // namespace

TEST(Configuration, IsReadAgainOnlyWhenItsTimeChanges) {
    const Support::TempFolder folder;
    ListenerConfiguration none(folder / "none", folder / "neither");
    EXPECT_EQ(none.Path(), "");
    EXPECT_EQ(none.RefreshOutputType(), 0);
    const std::string path = folder.Write("fallback", usual);
    ListenerConfiguration configuration(folder / "none", path);
    EXPECT_EQ(configuration.Path(), path);
    EXPECT_EQ(configuration.RefreshOutputType(), 1);
    EXPECT_EQ(configuration.OutputType(), 1);
    EXPECT_EQ(configuration.RefreshOutputType(), 0);
    EXPECT_EQ(configuration.Value("quaylistener", "file"), "x.jsonl");
    for (const auto& [text, type] : {std::pair("[QuayPubilsher]\nOUTPUT_TYPE = 1 2 junk", 12),
                                     {"[Other]\nOUTPUT_TYPE=1", 0},
                                     {"[QuayPubilsher]\n;OUTPUT_TYPE=1\n", 0},
                                     {"", 0}}) {
        folder.Write("fallback", text);
        fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(type + 1));
        EXPECT_EQ(configuration.RefreshOutputType(), 1) << text;
        EXPECT_EQ(configuration.OutputType(), type) << text;
    }
    fs::remove(path);
    EXPECT_EQ(configuration.RefreshOutputType(), 0);
}

TEST(Configuration, IsWrittenOnceAndRewrittenKeyByKey) {
    const Support::TempFolder folder;
    const ListenerConfiguration made(folder / "new", "");
    EXPECT_EQ(made.UpdateConfiguration(1, "x"), 1);
    EXPECT_EQ(made.WriteConfiguration(1), 0);
    EXPECT_EQ(made.WriteConfiguration(0), 1);
    EXPECT_EQ(folder.Read("new"), "[QuayPubilsher]\r\nOUTPUT_TYPE = 1\t; 0 - Disable | 1 - Enable\r\n");
    EXPECT_EQ(ListenerConfiguration(folder / "no/folder", "").WriteConfiguration(1), -1);

    const std::string section = listener;
    struct Case {
        std::string before;
        int type, result;
        std::string after;  // empty: as before
    };
    const Case cases[] = {
        {usual, 0, 0, section + "OUTPUT_TYPE=0; on\nRESOURCE_NAME=old\nmore = 1\n"},
        {usual, 2, 0, section + "OUTPUT_TYPE=2; on\nRESOURCE_NAME=name\nmore = 1\n"},
        {"[QuayListener]\n", 1, 0,
         "[QuayListener]\n\n\n[QuayPubilsher]\r\nOUTPUT_TYPE = 1\t; 0 - Disable | 1 - Enable\r\n"},
        {"[QuayPubilsher]\nOUTPUT_TYPE=1\n", 1, -1, ""},
        {"[QuayPubilsher]\nRESOURCE_NAME=x\n", 0, -1, ""},
        {"[QuayPubilsher]\n", 0, -1, ""},
        {"[QuayPubilsher]\nOUTPUT_TYPE=1;" + std::string(504, 'x') + "\n", 0, -5, ""},
        {"[QuayPubilsher]\nOUTPUT_TYPE=1;" + std::string(503, 'x') + "\n", 0, 0,
         "[QuayListener]\n\n\n[QuayPubilsher]\nOUTPUT_TYPE=0;" + std::string(503, 'x') + "\n"},
    };
    for (const Case& c : cases) {
        const ListenerConfiguration configuration(folder.Write("ini", c.before), "");
        EXPECT_EQ(configuration.UpdateConfiguration(c.type, "name"), c.result) << c.before;
        EXPECT_EQ(folder.Read("ini"), c.after.empty() ? c.before : c.after);
    }
    fs::create_hard_link(folder / "ini", folder / "second");
    EXPECT_EQ(ListenerConfiguration(folder / "ini", "").UpdateConfiguration(1, "x"), -1) << "can't be written";
}
