#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "Child.h"
#include "Folder.h"
#include "OSAL/ScratchFolder.h"
#include "OSAL/WholeFile.h"

using WholeFiles = Files;

namespace {
std::string Written(const std::string& path, const std::string& text) {
    const auto written = OSAL::WriteWholeFile(path, text);
    return written ? "" : written.Reason();
}
}  // namespace

TEST_F(WholeFiles, KeepTheOldContentUntilCommittedAndItsModeAfterwards) {
    const auto path = Make("a", "old");
    chmod(path.c_str(), 0640);
    {
        auto dropped = OSAL::WholeFile::Begin(path);
        EXPECT_TRUE(dropped->Write("new"));
    }
    auto file = OSAL::WholeFile::Begin(path);
    EXPECT_TRUE(file->Write("ne") && file->Write("w"));
    EXPECT_EQ(TextOf(path), "old");
    EXPECT_TRUE(file->Commit());
    EXPECT_FALSE(file->Write("more") && file->Commit());
    EXPECT_EQ(TextOf(path), "new");
    EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0640));
    EXPECT_EQ(Written(m_folder + std::string(255, 'n'), "longest name"), "");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 2) << "no part is left";
}

TEST_F(WholeFiles, RefuseLinksAndWhatCantBeReplaced) {
    const auto plain = Make("plain", "mine");
    fs::create_symlink("plain", m_folder + "link");
    fs::create_symlink("nowhere", m_folder + "dangling");
    fs::create_hard_link(plain, m_folder + "second");
    mkfifo((m_folder + "pipe").c_str(), 0600);
    const std::pair<std::string, std::string> cases[] = {{m_folder + "link", "it is a link"},
                                                         {m_folder + "dangling", "it is a link"},
                                                         {m_folder + "second", "it is a link"},
                                                         {m_folder + "pipe", "nobody reads it"},
                                                         {m_folder, "Is a directory"},
                                                         {"", "No such file or directory"},
                                                         {m_folder + "no/a", "No such file or directory"},
                                                         {"/dev/full", "No space left on device"}};
    for (const auto& [path, why] : cases)
        EXPECT_EQ(Written(path, "x"), "can't write '" + path + "': " + why);
    EXPECT_EQ(TextOf(plain), "mine");
    EXPECT_FALSE(fs::exists(m_folder + "nowhere"));
}

TEST_F(WholeFiles, WriteToAPipeAndToTheirOwnStreamsWithoutReplacingThem) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string large(200000, 'x');
    std::size_t got = 0;
    std::thread reader([&] {
        std::string buffer(65536, ' ');
        for (ssize_t count; (count = read(ends[0], buffer.data(), buffer.size())) > 0;)
            got += static_cast<std::size_t>(count);
    });
    const auto path = "/dev/fd/" + std::to_string(ends[1]);
    EXPECT_EQ(Written(path, large), "");
    close(ends[1]);
    reader.join();
    EXPECT_EQ(got, large.size());
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_NE(Written("/dev/fd/" + std::to_string(ends[1]), "x").find("Broken pipe"), std::string::npos);
    close(ends[1]);
}

TEST_F(WholeFiles, AreOldOrNewWheneverTheirWritersAreKilled) {
    const std::string first(300000, 'a'), second(300000, 'b');
    const auto path = Make("a", first);
    for (int round = 0; round < 50; ++round) {
        const auto write = [&] {
            for (int k = round; OSAL::WriteWholeFile(path, k % 2 ? first : second); ++k) {
            }
            return 1;
        };
        Child one(write), other(write);
        usleep(static_cast<useconds_t>(round * 211 % 7000));
        for (Child* writer : {&one, &other})
            EXPECT_EQ(writer->Kill(), -SIGKILL) << "it fell out of its loop";
        const auto text = TextOf(path);
        ASSERT_TRUE(text == first || text == second) << round;
    }
    EXPECT_EQ(Written(path, first), "");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 1) << "no part is left";
}

TEST_F(WholeFiles, TakePartsOfDeadWritersAwayAndLeaveThoseOfTheLiving) {
    const auto dead = Make(".a.tarn1.part", "half"), living = Make(".a.tarn2.part", "half");
    const int writer = open(living.c_str(), O_WRONLY);
    flock(writer, LOCK_EX);
    fs::create_symlink(Make("b", "mine"), m_folder + ".a.tarn0.part");
    EXPECT_EQ(Written(m_folder + "a", "x"), "");
    close(writer);
    EXPECT_FALSE(fs::exists(dead));
    EXPECT_TRUE(fs::exists(living) && fs::exists(m_folder + "b"));
    EXPECT_TRUE(OSAL::IsLeftOverPart(fs::path(living).filename().string()));
}

TEST_F(WholeFiles, ScratchFoldersOfTheDeadGoWithTheNextOfTheirKind) {
    setenv("TMPDIR", m_folder.c_str(), 1);
    const auto make = [&] { return OSAL::ScratchFolder::Make("kind"); };
    Child killed([&] {
        const auto folder = make();
        return folder ? raise(SIGKILL) : 0;
    });
    EXPECT_EQ(killed.Status(), -SIGKILL);
    fs::create_directory(m_folder + "kind-of-other");
    fs::create_directory_symlink("kind-of-other", m_folder + "kind-linked");
    {
        const auto living = make(), second = make();
        ASSERT_TRUE(living && second);
        EXPECT_TRUE(fs::exists(living->Path()));
        EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 4);
    }
    unsetenv("TMPDIR");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 2);
}
