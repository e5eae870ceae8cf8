// The command lines of the documentation, as they stand there.
#include <gtest/gtest.h>

#include <filesystem>

#include "OSAL/Process.h"
#include "Program.h"
#include "Support/TempFolder.h"

TEST(Documentation, EveryCommandRuns) {
    namespace fs = std::filesystem;
    const Support::TempFolder folder;
    folder.Write("test.cfg",
                 "bw,20\nrbw,39.0625\nchainMode,A->B\niterations,1\nbitcfg,Workload.bitcfg\ndisableBit,true\n"
                 "LBChannels,[]\nHBChannels,[]\nUHBChannels,[1]\n");
    folder.Write("lines.txt", "-get_platform_info\n");
    const std::string begin = "set -o pipefail; cd '" + folder.Path().string() +
                              "'; rm -rf captures; script/run() { shift; tarn \"$@\"; }; tarn() { '" TARN_PROGRAM
                              "' \"$@\"; }\n{ ";
    const auto run = [&](const std::string& line) {
        return OSAL::RunProgram({"/bin/bash", "-c", begin + line + "\n} >said 2>&1"});
    };
    ASSERT_EQ(run("tarn simulate out/demo --adapter bands=0,antennas=1 && cp -r out/demo 'My captures'"), 0)
        << folder.Read("said");
    std::vector<fs::path> documents{TARN_ROOT "/README.md"};
    for (const auto& entry : fs::directory_iterator(TARN_ROOT "/docs"))
        if (entry.path().extension() == ".md") documents.push_back(entry.path());
    int count = 0;
    for (const fs::path& document : documents)
        for (std::string line : Support::CodeLines(document)) {
            if (!line.starts_with("tarn ") && !line.starts_with("script/run -- ") && line.find("| tarn ") == line.npos)
                continue;
            if (line.find(" serve") != line.npos) continue;  // runs until a signal; the server's own tests start it
            for (const auto& [name, value] : {std::pair{"simulate FOLDER", "simulate captures"},
                                              {"FOLDER", "out/demo"},
                                              {"FILE", "test.cfg"},
                                              {"DIR", "results"},
                                              {"LINE...", "-get_platform_info"}})
                if (const auto at = line.find(name); at != line.npos) line.replace(at, std::string(name).size(), value);
            EXPECT_EQ(run(line), 0) << document << ": " << line << "\n" << folder.Read("said");
            ++count;
        }
    EXPECT_GT(count, 20);
}
