#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "Folder.h"
#include "OSAL/OSAL.h"

TEST(Paths, AreTakenApartAtTheLastSeparatorOfEitherKind) {
    struct Case {
        std::string path, directory, name, stem;
    };
    for (const auto& c : {Case{"/a/b.c.txt", "/a/", "b.c.txt", "b.c"}, Case{"a\\b/c\\d", "a\\b/c\\", "d", "d"},
                          Case{"plain.csv", "", "plain.csv", "plain"}, Case{"/", "/", "", ""}, Case{"", "", "", ""}}) {
        EXPECT_EQ(OSAL::DirectoryOf(c.path), c.directory) << c.path;
        EXPECT_EQ(OSAL::FileNameOf(c.path), c.name) << c.path;
        EXPECT_EQ(OSAL::StemOf(OSAL::FileNameOf(c.path)), c.stem) << c.path;
    }
}

TEST(Paths, NormalizeToSingleBackSlashes) {
    const std::pair<std::string, std::string> cases[] = {{"a//b/c", "a\\b\\c"}, {"\\\\\\\\x", "\\x"}, {"", ""}};
    for (auto [path, normal] : cases) {
        OSAL::NormalizePath(path);
        EXPECT_EQ(path, normal);
    }
    EXPECT_EQ(OSAL::NativePath("\\tmp\\x"), "/tmp/x");
}

TEST_F(Files, LinksAreSymbolicLinksAndFilesWithSeveralNames) {
    const auto plain = Make("plain", "x");
    EXPECT_FALSE(OSAL::IsLink(plain));
    EXPECT_FALSE(OSAL::IsLink(m_folder + "missing"));
    EXPECT_FALSE(OSAL::IsLink(m_folder));
    fs::create_directory(m_folder + "sub");
    EXPECT_FALSE(OSAL::IsLink(m_folder)) << "a folder's link count grows with its folders";
    fs::create_symlink("nowhere", m_folder + "dangling");
    EXPECT_TRUE(OSAL::IsLink(m_folder + "dangling"));
    fs::create_directory_symlink("sub", m_folder + "link");
    EXPECT_TRUE(OSAL::IsLink(m_folder + "link/")) << "a separator at the end hides no link";
    fs::create_hard_link(plain, m_folder + "second");
    EXPECT_TRUE(OSAL::IsLink(plain));
}

TEST_F(Files, FileExistsRefusesSymbolicLinksButNotFolders) {
    EXPECT_TRUE(OSAL::FileExists(Make("plain", "")));
    EXPECT_FALSE(OSAL::FileExists(m_folder));
    EXPECT_FALSE(OSAL::FileExists(m_folder + "missing"));
    fs::create_symlink("plain", m_folder + "link");
    try {
        OSAL::FileExists(m_folder + "link");
        FAIL();
    } catch (const OSAL::exception& e) {
        EXPECT_STREQ(e.what(), "the given file is a symbolic link - not supportted");
    }
}

TEST_F(Files, CopyReplacesTheTargetAndLeavesAFileCopiedOntoItselfAlone) {
    const std::string large(200000, 'x');
    const auto from = Make("from", large), to = Make("to", "old and longer than nothing");
    EXPECT_EQ(OSAL::CopyFile(from, to), OSAL::Success);
    EXPECT_EQ(TextOf(to), large);
    EXPECT_EQ(OSAL::CopyFile(from, from), OSAL::Failure);
    EXPECT_EQ(TextOf(from), large);
    EXPECT_EQ(OSAL::CopyFile(m_folder + "missing", to), OSAL::Failure);
    EXPECT_EQ(TextOf(to), large) << "nothing to copy: nothing lost";
}

TEST_F(Files, ReplaceKeepsTheTargetWhenThereIsNothingToReplaceItWith) {
    const auto from = Make("from", "new"), to = Make("to", "old");
    EXPECT_EQ(OSAL::ReplaceFile(m_folder + "missing", to), OSAL::Failure);
    EXPECT_EQ(TextOf(to), "old");
    EXPECT_EQ(OSAL::ReplaceFile(from, to), OSAL::Success);
    EXPECT_EQ(TextOf(to), "new");
    EXPECT_FALSE(OSAL::FileExists(from));
}

TEST_F(Files, ListingLeavesOutTheDotsAndTheResultFile) {
    for (const char* name : {"b.txt", "a", "result.csv", ".hidden", ".a.0123456789ab.part"})
        Make(name, "");
    fs::create_directories(m_folder + "sub/deeper");
    auto names = OSAL::ListDirectory(m_folder);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{".hidden", "a", "b.txt", "sub"}));
    EXPECT_TRUE(OSAL::ListDirectory(m_folder + "missing").empty());
}

TEST_F(Files, ModesOfOpeningDecideWhatIsKept) {
    const auto write = [](const std::string& path, unsigned mode, bool openExisting, const std::string& text) {
        const auto file = OSAL::OpenFile(path, mode, openExisting);
        std::size_t written = 0;
        const int result = OSAL::WriteFile(file, text.data(), text.size(), written);
        OSAL::CloseFile(file);
        return result == OSAL::Success && written == text.size();
    };
    const auto path = m_folder + "file";
    EXPECT_FALSE(write(path, OSAL::ReadWrite, true, "x")) << "an existing file is wanted";
    EXPECT_TRUE(write(path, OSAL::ReadWrite, false, "first"));
    EXPECT_TRUE(write(path, OSAL::Append, true, "+more"));
    EXPECT_EQ(TextOf(path), "first+more");
    EXPECT_TRUE(write(path, OSAL::ReadWrite, true, "F"));
    EXPECT_EQ(TextOf(path), "First+more");
    EXPECT_TRUE(write(path, OSAL::Append, false, "!")) << "append never empties";
    EXPECT_EQ(TextOf(path), "First+more!");
    EXPECT_FALSE(write(path, OSAL::ReadOnly, true, "x"));
    EXPECT_TRUE(write(path, OSAL::ReadWrite, false, "")) << "made anew";
    EXPECT_EQ(TextOf(path), "");
}

TEST_F(Files, APrivateFileIsItsOwnersAloneWhateverItWasBefore) {
    for (const unsigned mode : {OSAL::Append, OSAL::ReadWrite})
        for (const std::string& path : {Make("open", "x"), m_folder + "new" + std::to_string(mode)}) {
            if (fs::exists(path)) fs::permissions(path, static_cast<fs::perms>(0664));
            OSAL::CloseFile(OSAL::OpenFile(path, mode | OSAL::Private, false));
            EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0600)) << path;
        }
}

TEST_F(Files, PathsThatNameNoFileGiveNoHandle) {
    Make("a", "x");
    for (const auto& path : {std::string(), m_folder, m_folder + "missing", m_folder + std::string("a\0b", 3)})
        EXPECT_EQ(OSAL::OpenFile(path, OSAL::ReadOnly, true), OSAL::InvalidFile) << path;
    EXPECT_EQ(OSAL::OpenFile(m_folder + "a", 0, true), OSAL::InvalidFile) << "no mode";
    const auto pipe = m_folder + "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const unsigned mode : {OSAL::ReadOnly, OSAL::ReadWrite, OSAL::Append})
        EXPECT_EQ(OSAL::OpenFile(pipe, mode, mode != OSAL::ReadWrite), OSAL::InvalidFile) << "waits for nobody";
    EXPECT_EQ(OSAL::SequentialFile(pipe).Write("x", 1, false), -1);
    EXPECT_FALSE(OSAL::CFile(pipe).Open());
    fs::create_symlink("a", m_folder + "link");
    EXPECT_EQ(OSAL::OpenFile(m_folder + "link", OSAL::Append | OSAL::NoLink, true), OSAL::InvalidFile);
    Make("other", "y");
    EXPECT_EQ(OSAL::CopyFile(m_folder + "other", m_folder + "link", OSAL::NoLink), OSAL::Failure);
    fs::create_hard_link(m_folder + "a", m_folder + "b");
    EXPECT_EQ(OSAL::OpenFile(m_folder + "b", OSAL::ReadWrite | OSAL::NoLink, false), OSAL::InvalidFile);
    EXPECT_EQ(TextOf(m_folder + "a"), "x") << "refused before it is emptied";
    if (geteuid() != 0) {
        chmod((m_folder + "a").c_str(), 0);
        EXPECT_EQ(OSAL::OpenFile(m_folder + "a", OSAL::ReadOnly, true), OSAL::InvalidFile);
    }
}

TEST_F(Files, AFullDeviceFailsTheWrite) {
    const auto file = OSAL::OpenFile("/dev/full", OSAL::ReadWrite, true);
    ASSERT_NE(file, OSAL::InvalidFile);
    std::size_t written = 1;
    EXPECT_EQ(OSAL::WriteFile(file, "abc", 3, written), OSAL::Failure);
    EXPECT_EQ(written, 0u);
    OSAL::CloseFile(file);
}

TEST_F(Files, SequentialReadingGoesOnWhereItStopped) {
    const std::string longLine(700, 'l');
    OSAL::SequentialFile file(m_folder + "lines");
    EXPECT_EQ(file.Read(nullptr, 0), -1) << "there is no file yet";
    const std::string text = "one\r\n\n" + longLine + "\nlast";
    EXPECT_EQ(file.Write("stale", 5, true), 5);
    EXPECT_EQ(file.Write(text.data(), 10, true), 10);
    EXPECT_EQ(file.Write(text.data() + 10, text.size() - 10, false), static_cast<int>(text.size()) - 10);
    std::string line;
    for (const auto& expected : {std::string("one"), std::string(), longLine, std::string("last")}) {
        EXPECT_EQ(file.ReadLine(line), static_cast<int>(expected.size()));
        EXPECT_EQ(line, expected);
    }
    EXPECT_EQ(file.ReadLine(line), -1);

    OSAL::SequentialFile again(m_folder + "lines");
    char buffer[8] = {};
    EXPECT_EQ(again.Read(buffer, 2), 2);
    EXPECT_EQ(again.Read(buffer, 2), 2);
    EXPECT_STREQ(buffer, "e\r");
}

TEST_F(Files, AFileOpensInAFolderItMakesAndGoesOnUnderAnotherName) {
    OSAL::CFile file(m_folder + "new/deep/name.log");
    ASSERT_TRUE(file.Open());
    file.Write(std::vector<std::string>{"a", "b"});
    file.WriteLine("c");
    Make("new/deep/other.log", "before,");
    file.Rename("other");
    file.Write("after");
    file.Close();
    EXPECT_EQ(TextOf(m_folder + "new/deep/name.log"), "abc\r\n");
    EXPECT_EQ(TextOf(file.GetFullPath()), "before,after");
    char name[260];
    OSAL::CFile(std::string("/x/") + std::string(400, 'n') + ".txt").GetFileName(name);
    EXPECT_EQ(std::string(name), std::string(259, 'n'));
    EXPECT_FALSE(OSAL::CFile("/proc/no/such/file").Open());
    EXPECT_THROW(OSAL::CFile("/proc/no/such.file").Rename("x"), std::ios_base::failure);
}

TEST_F(Files, LinesOfSeveralThreadsStayWholeWhileTheFileMovesOn) {
    OSAL::CFile file(m_folder + "a.log");
    ASSERT_TRUE(file.Open());
    const auto write = [&](char letter) {
        for (int k = 0; k < 300; ++k)
            file.WriteLine(std::string(50, letter));
    };
    std::thread other([&] { write('b'); });
    std::thread mover([&] {
        for (const char* name : {"b", "c", "a"}) {
            OSAL::SleepMs(1);
            file.Rename(name);
        }
    });
    write('a');
    other.join();
    mover.join();
    file.Close();
    int lines = 0;
    for (const char* name : {"a.log", "b.log", "c.log"}) {
        std::istringstream text(fs::exists(m_folder + name) ? TextOf(m_folder + name) : "");
        for (std::string line; std::getline(text, line); ++lines)
            EXPECT_EQ(line, std::string(50, line[0]) + "\r");
    }
    EXPECT_EQ(lines, 600);
}
