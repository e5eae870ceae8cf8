#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <thread>

#include "Streams/Trace.h"
#include "Support/TempFolder.h"
#include "TestStreams.h"

namespace fs = std::filesystem;
using Streams::AppStreams;

namespace {

struct LogFile : testing::Test {
    ~LogFile() override { AppStreams::CloseLogFile(); }
    /// Opens a log for appending that has `size` bytes already.
    std::string OpenWithSize(const std::string& name, std::uintmax_t size) const {
        const auto path = folder.Write(name, "");
        fs::resize_file(path, size);
        AppStreams::OpenLogFile(path, std::ios_base::app);
        return path;
    }
    Support::TempFolder folder;
};

void WriteOne(const char* message) {
    static constexpr const char* traceFunctionName = "Test::WriteOne";
    TRACE(Streams::TraceWarning, message);
}

const std::string timePattern = "^\\d{4}-\\d\\d-\\d\\d [A-Z]\\w\\w [A-Z]\\w\\w \\d\\d:\\d\\d:\\d\\d\\.\\d{3} \\| ";

}  // namespace

TEST(LogLine, HasItsFieldsInTheirColumns) {
    const auto line = [](unsigned level, const char* function, const char* message) {
        std::ostringstream stream;
        Streams::WriteLogLine(level, "file.cpp", function, message, stream, "");
        return std::regex_replace(stream.str(), std::regex(timePattern), "T");
    };
    const auto blanks = [](int count) { return std::string(static_cast<std::size_t>(count), ' '); };
    const std::string longName(45, 'f');
    EXPECT_EQ(line(4, "A::B", "x"), "T[OEMINFO]   | A::B" + blanks(36) + " | x\n");
    EXPECT_EQ(line(3, "A", ""), "T" + blanks(12) + "| A" + blanks(39) + " | \n");
    EXPECT_EQ(line(1, longName.c_str(), "m"), "T[OEMERROR]  | " + longName + " | m\n");
    EXPECT_EQ(line(2, nullptr, "m").substr(0, 15), "T[OEMWARNING]| ");
    EXPECT_EQ(line(8, "A", "m").substr(0, 15), "T[OEMTRACE]  | ");
}

TEST_F(LogFile, GetsTheLinesOfScopesAndMessagesWhileItIsOpen) {
    WriteOne("too early");
    EXPECT_FALSE(Streams::IsTraceOn());
    AppStreams::OpenLogFile(folder / "a.txt");
    EXPECT_TRUE(Streams::IsTraceOn());
    EXPECT_EQ(AppStreams::GetLogPath(), folder / "a.txt");
    {
        TRACE_SCOPE("Test::Scope");
        TRACE(Streams::TraceDebug, "inside");
    }
    AppStreams::OpenLogFile(folder / "b.txt");
    WriteOne("second");
    AppStreams::CloseLogFile();
    WriteOne("too late");
    const auto text = folder.Read("a.txt");
    for (const char* part : {"[OEMINFO]   | Test::Scope", " | --------------------->Enter\n", " | inside\n",
                             " | <---------------------Exit\n"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
    const auto second = folder.Read("b.txt");
    EXPECT_EQ(std::count(second.begin(), second.end(), '\n'), 1);
    EXPECT_EQ(fs::status(folder / "a.txt").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(LogFile, DoesNotEvaluateMessagesWithoutALog) {
    static constexpr const char* traceFunctionName = "";
    bool evaluated = false;
    TRACE(Streams::TraceError, (evaluated = true, "x"));
    EXPECT_FALSE(evaluated);
}

TEST_F(LogFile, RotatesAtExactly50MiBUnderSuccessiveNumbers) {
    auto& counter = SingletonWrapper<AppStreams>::accessObject()->rotationCounter;
    counter = 0;
    constexpr std::uintmax_t limit = 52428800;
    auto path = OpenWithSize("a.txt", limit - 1);
    WriteOne("still fits");
    EXPECT_EQ(counter, 0u);
    EXPECT_GT(fs::file_size(path), limit);
    WriteOne("in the new file");
    EXPECT_EQ(counter, 1u);
    EXPECT_GT(fs::file_size(folder / "a0.txt"), limit);
    EXPECT_EQ(fs::status(folder / "a0.txt").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_LT(fs::file_size(path), 200u);
    EXPECT_NE(Support::ReadText(path).find("in the new file"), std::string::npos);

    path = OpenWithSize("plain", limit);
    WriteOne("x");
    EXPECT_EQ(fs::file_size(folder / "plain1.txt"), limit) << "a path without .txt gets it";
}

TEST_F(LogFile, LeavesAPathAloneThatIsALink) {
    AppStreams::OpenLogFile(folder / "first.txt");
    folder.Write("victim", "keep");
    fs::create_symlink(folder / "victim", folder / "link.txt");
    AppStreams::OpenLogFile(folder / "link.txt");
    EXPECT_EQ(AppStreams::GetLogPath(), folder / "first.txt");
    WriteOne("goes on");
    EXPECT_NE(folder.Read("first.txt").find("goes on"), std::string::npos);
    EXPECT_EQ(folder.Read("victim"), "keep");

    const auto path = OpenWithSize("big.txt", 52428800);
    fs::create_hard_link(path, folder / "second-name");
    const auto before = std::distance(fs::directory_iterator(folder.Path()), {});
    for (int i = 0; i < 3; ++i)
        WriteOne("dropped");
    EXPECT_EQ(fs::file_size(path), 52428800u);
    EXPECT_LE(std::distance(fs::directory_iterator(folder.Path()), {}), before + 1) << "not one copy a line";
}

TEST_F(LogFile, ThatCannotBeOpenedDropsLinesUntilAnotherOneCan) {
    AppStreams::OpenLogFile(folder / "missing/a.txt");
    WriteOne("lost");
    EXPECT_TRUE(AppStreams::GetLog().fail());
    AppStreams::OpenLogFile(folder / "a.txt");
    WriteOne("kept");
    const auto text = folder.Read("a.txt");
    EXPECT_EQ(text.find("lost"), std::string::npos);
    EXPECT_NE(text.find("kept"), std::string::npos);
}

TEST_F(LogFile, KeepsTheLinesOfSeveralThreadsWhole) {
    AppStreams::OpenLogFile(folder / "a.txt");
    const auto write = [] {
        for (int i = 0; i < 200; ++i)
            WriteOne("0123456789");
    };
    std::thread other(write);
    write();
    other.join();
    std::istringstream lines(folder.Read("a.txt"));
    int whole = 0;
    const std::regex pattern(timePattern + "\\[OEMWARNING\\]\\| Test::WriteOne {26} \\| 0123456789$");
    for (std::string line; std::getline(lines, line);)
        whole += std::regex_match(line, pattern);
    EXPECT_EQ(whole, 400);
}

TEST_F(LogFile, HearsOfFailingLocksAndOfTheDebugOutput) {
    AppStreams::OpenLogFile(folder / "a.txt");
    SyncObjectsOSAL::SemaphoreOSAL(2, 1);
    OSAL::OutputDebugString("to the debugger");
    const auto text = folder.Read("a.txt");
    EXPECT_NE(text.find("Failed to create semaphore with maximum count!"), std::string::npos);
    EXPECT_NE(text.find("to the debugger"), std::string::npos);
}

TEST_F(LogFile, IsSharedWithAPluginWhoseObjectsGoWithItsCode) {
    using Wrapper = SingletonWrapper<AppStreams>;
    void* plugin = dlopen(TEST_PLUGIN, RTLD_NOW);
    ASSERT_NE(plugin, nullptr) << dlerror();
    AppStreams::OpenLogFile(folder / "a.txt");
    reinterpret_cast<void (*)()>(dlsym(plugin, "WriteTraceOfPlugin"))();
    EXPECT_NE(folder.Read("a.txt").find("from the plug-in"), std::string::npos);
    const auto touch = reinterpret_cast<void* (*)()>(dlsym(plugin, "TouchStreams"));

    // As if the plug-in had asked first: the instance is its own, and goes with it.
    AppStreams* const own = std::exchange(Wrapper::accessObject(), nullptr);
    AppStreams* const foreign = static_cast<AppStreams*>(touch());
    EXPECT_NE(foreign, own);
    EXPECT_EQ(Wrapper::peekObject(), foreign);
    dlclose(plugin);
    ASSERT_EQ(dlopen(TEST_PLUGIN, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the plug-in is still in memory";
    EXPECT_EQ(Wrapper::peekObject(), nullptr);
    EXPECT_FALSE(Streams::IsTraceOn());
    WriteOne("nobody there");
    Wrapper::accessObject() = own;
}
