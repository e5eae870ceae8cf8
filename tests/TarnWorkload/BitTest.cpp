// The workload's text, its switches, and the built program as a host starts and loses it.
#include <gtest/gtest.h>

#include <sstream>

#include "Bit.h"
#include "OSAL/Process.h"
#include "OSAL/Time.h"
#include "Support/TempFolder.h"
#include "Support/WorkloadLock.h"

namespace {

using namespace TarnWorkload;

TEST(WorkloadFile, EveryKeyIsReadAndEveryBadLineRefusedByItsNumber) {
    const auto plan = ParsePlan(
        "# text\r\ncpu 3\nmemory 1 # one\n\tmemory_mib 16\nload_percent 50\nengine built-in\n"
        "memtest_mib 8\nlimit_s 9");
    ASSERT_TRUE(plan) << plan.Reason();
    EXPECT_EQ(Describe(*plan),
              "3 processor workers, 1 memory workers of 16 MiB, each busy 50 % of its time, memory test "
              "of 8 MiB, for 9 s");
    EXPECT_EQ(plan->engine, Engine::BuiltIn);
    EXPECT_EQ(StressNgArguments(*plan), "--cpu 3 --cpu-load 50 --quiet --memrate 1 --memrate-bytes 16M --timeout 9");
    for (const auto& [text, reason] :
         {std::pair{"cpu", "line 1: expected KEY VALUE"},
          {"\ncpu 1 2", "line 2: expected KEY VALUE"},
          {"gpu 1", "line 1: unknown key 'gpu'"},
          {"load_percent 0", "line 1: load_percent: '0' isn't a whole number from 1 to 100"},
          {"cpu 1x", "line 1: cpu: '1x' isn't a whole number from 0 to 1024"},
          {"cpu -1", "line 1: cpu: '-1' isn't a whole number from 0 to 1024"},
          {"engine gpu", "line 1: engine: 'gpu' isn't auto, stress-ng or built-in"}}) {
        const auto refused = ParsePlan(text);
        ASSERT_TRUE(refused.IsRefused()) << text;
        EXPECT_EQ(refused.Reason(), reason);
    }
}

TEST(Bit, WithoutASwitchOrAFileItSaysWhatIsWrong) {
    const Support::TempFolder folder;
    std::ostringstream out, err;
    EXPECT_EQ(RunBit({"-R"}, out, err), 2);
    EXPECT_EQ(RunBit({"-X", "-C", "a"}, out, err), 2);
    EXPECT_EQ(RunBit({"-R", "-C", folder / "none.bitcfg"}, out, err), 1);
    EXPECT_EQ(RunBit({"-C", folder.Write("plan.bitcfg", "cpu 2\n")}, out, err), 0);  // tells, and loads nothing
    EXPECT_EQ(out.str(), "bit: 2 processor workers, 0 memory workers of 64 MiB, each busy 100 % of its time\n");
}

/// Starts the built program under its name with a light load of its own making.
OSAL::ProcessInformation Start(const Support::TempFolder& folder, std::vector<std::string> environment = {}) {
    folder.Write("light.bitcfg", "cpu 1\nload_percent 5\nmemtest_mib 1\nengine built-in\nlimit_s 20\n");
    OSAL::ProcessInformation process;
    EXPECT_TRUE(OSAL::StartProcess(TARN_WORKLOAD_FOLDER, "bit", "-T -R -C \"" + (folder / "light.bitcfg") + "\"",
                                   process, {.environment = std::move(environment)}));
    return process;
}

TEST(Bit, ASignalEndsTheLoadAndItsCompanion) {
    const Support::WorkloadLock lock;
    const Support::TempFolder folder;
    const OSAL::ProcessInformation process = Start(folder);
    // A host that was gone before the load could look for it; its number is beyond all there can be.
    const OSAL::ProcessInformation orphan = Start(folder, {"TARN_HOST_PROCESS=999999999"});
    for (int k = 0; k < 500 && OSAL::IsRunning(orphan); ++k)
        OSAL::SleepMs(10);
    EXPECT_FALSE(OSAL::IsRunning(orphan));
    EXPECT_TRUE(OSAL::IsRunning(process));
    EXPECT_TRUE(OSAL::TerminateHandle(process));
    EXPECT_FALSE(OSAL::IsRunning(process));
}

TEST(Bit, TheLoadEndsWithAHostThatIsKilled) {
    const Support::WorkloadLock lock;
    const Support::TempFolder folder;
    folder.Write("light.bitcfg", "cpu 1\nload_percent 5\nengine built-in\nlimit_s 20\n");
    // The host is a shell that starts the program, tells its number and is killed.
    folder.Write("host", "#!/bin/sh\n'" TARN_WORKLOAD_FOLDER "/bit' -R -C '" + (folder / "light.bitcfg") + "' >'" +
                             (folder / "said") + "' &\necho $! >'" + (folder / "number") + "'\nwait\n");
    std::filesystem::permissions(folder / "host", std::filesystem::perms::owner_all);
    OSAL::ProcessInformation host;
    ASSERT_TRUE(OSAL::StartProcess(folder.Path().string(), "host", "", host));
    for (int k = 0; k < 500 && folder.Read("said").empty(); ++k)
        OSAL::SleepMs(10);
    const std::string number = folder.Read("number");
    ASSERT_FALSE(number.empty());
    OSAL::RunProgram({"/bin/sh", "-c", "kill -9 " + std::to_string(host.processId)});
    OSAL::TerminateHandle(host);
    const auto isThere = [&] { return OSAL::RunProgram({"/bin/sh", "-c", "kill -0 " + number}) == 0; };
    for (int k = 0; k < 500 && isThere(); ++k)
        OSAL::SleepMs(10);
    EXPECT_FALSE(isThere());
}

}  // namespace
