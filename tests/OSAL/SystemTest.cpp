#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <ctime>
#include <regex>

#include "OSAL/OSAL.h"

TEST(TimeStamps, HaveTheirFieldsAndUnknownFormsNone) {
    const std::pair<unsigned, const char*> forms[] = {
        {1, "\\d\\d-\\d\\d-\\d\\d"},
        {2, "20\\d\\d"},
        {4, "[01]\\d-[0-3]\\d"},
        {6, "20\\d\\d-[01]\\d-[0-3]\\d"},
        {7, "20\\d\\d-[01]\\d-[0-3]\\d_[0-2]\\d-[0-5]\\d-[0-6]\\d"},
        {8, "[0-5]\\d"},
        {10, "[0-5]\\d_20\\d\\d"},
        {16, "\\d\\d\\d"},
        {17, "[0-2]\\d-[0-5]\\d-[0-6]\\d\\.\\d\\d\\d"},
        {32, "[0-6]\\d"},
        {48, "[0-6]\\d\\.\\d\\d\\d"},
        {64, "[0-5]\\d"},
        {112, "[0-5]\\d-[0-6]\\d\\.\\d\\d\\d"},
        {128, "[01]\\d-[0-3]\\d-20\\d\\d"},
    };
    std::string stamp;
    std::size_t known = 0;
    for (const auto& [form, pattern] : forms) {
        EXPECT_TRUE(OSAL::TimeStamp(form, stamp));
        EXPECT_TRUE(std::regex_match(stamp, std::regex(pattern))) << form << ": " << stamp;
    }
    for (unsigned form = 0; form <= 300; ++form)
        known += OSAL::TimeStamp(form, stamp);
    EXPECT_EQ(known, std::size(forms));
    EXPECT_FALSE(OSAL::TimeStamp(3, stamp));
    EXPECT_EQ(stamp, "");
}

TEST(LocalTime, SaysWhenTheBufferIsTooSmall) {
    char buffer[5] = "left";
    EXPECT_EQ(OSAL::FormatLocalTime("%Y-%m", buffer, sizeof buffer), OSAL::Failure);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(OSAL::FormatLocalTime("%Y", buffer, sizeof buffer), OSAL::Success);
    const std::time_t now = std::time(nullptr);
    EXPECT_NEAR(std::atoi(buffer), 1970 + static_cast<double>(now) / 31556952.0, 1.0);
    EXPECT_EQ(OSAL::FormatLocalTime(std::string(300, 'x').c_str()), "") << "longer than any text of ours";
}

TEST(Sleeps, LastAtLeastTheirTimeAndPublishAScope) {
    static std::string published;
    static int depth = 0;
    const OSAL::SleepScopeHook hook{[](const OSAL::PublishedSleep& sleep) -> void* {
                                        published += std::string(sleep.function) + " " + sleep.argumentNames + " " +
                                                     std::to_string(sleep.amount) + "\n";
                                        return &++depth;
                                    },
                                    [](void* scope) { --*static_cast<int*>(scope); }};
    OSAL::SetSleepScopeHook(&hook);
    OSAL::Stopwatch watch;
    OSAL::Sleep::MilliSec(12);
    EXPECT_GE(watch.ElapsedMs(), 12.0);
    watch.Start();
    OSAL::Sleep::MicroSec(300);
    EXPECT_GE(watch.ElapsedMs(), 0.3);
    OSAL::SleepMs(1);
    OSAL::SetSleepScopeHook(nullptr);
    OSAL::Sleep::MilliSec(1);
    EXPECT_EQ(published,
              "OSAL::Sleep::MilliSec '\\0', milliseconds 12\nOSAL::Sleep::MicroSec '\\0', microseconds 300\n");
    EXPECT_EQ(depth, 0);
}

TEST(Machine, FactsAgreeWithEachOther) {
    const auto info = OSAL::GetSystemInfo();
    EXPECT_GE(info.numberOfProcessors, 1u);
    EXPECT_GE(std::popcount(info.activeProcessorMask), 1);
    EXPECT_TRUE(std::has_single_bit(info.pageSize));
    int local = 0;
    EXPECT_LT(info.minimumApplicationAddress, static_cast<void*>(&local));
    EXPECT_GT(info.maximumApplicationAddress, static_cast<void*>(&local));
    EXPECT_NE(OSAL::GetComputerName(), "");
    EXPECT_EQ(OSAL::GetProcessorBrand().find('\0'), std::string::npos);
    std::string directory;
    EXPECT_EQ(OSAL::GetModuleDirectory(directory), OSAL::Success);
    EXPECT_EQ(directory.back(), '/');
}

TEST(SystemErrors, HaveATextIfTheSystemKnowsThem) {
    std::string text;
    EXPECT_EQ(OSAL::FormatSystemError(2, text), OSAL::Success);
    EXPECT_EQ(text, "No such file or directory");
    EXPECT_EQ(OSAL::FormatSystemError(-123456, text), OSAL::Failure);
    EXPECT_EQ(text, "");
}

TEST(LayerException, TellsTheDebuggerAndSurvivesANullMessage) {
    static std::string heard;
    OSAL::SetDebugOutputHook([](const char* text) { heard += text; });
    EXPECT_STREQ(OSAL::invalid_argument("bad").what(), "bad");
    EXPECT_STREQ(OSAL::exception(static_cast<const char*>(nullptr)).what(), "Unknown exception");
    OSAL::SetDebugOutputHook(nullptr);
    EXPECT_EQ(heard, "bad");
}
