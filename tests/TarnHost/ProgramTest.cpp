// The built program as a person or a script meets it.
#include "Program.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <future>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Console/ResultTable.h"
#include "Console/Supervisor.h"

namespace fs = std::filesystem;

namespace {

const std::string goodName = "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_";

/// A tone of 100 codes amplitude on each of I and Q: enough for a level above the floor.
void WriteCapture(const fs::path& path, int lines = 4096) {
    std::ofstream file(path);
    static constexpr int cycle[] = {100, 71, 0, -71, -100, -71, 0, 71};
    for (int k = 0; k < lines; ++k)
        file << cycle[k % 8] << " ," << cycle[(k + 2) % 8] << "\n";
}

std::vector<nlohmann::json> Records(const std::string& text) {
    std::vector<nlohmann::json> records;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        records.push_back(nlohmann::json::parse(line));
    return records;
}

Program OnFake(std::vector<std::string> arguments) {
    Program program(std::move(arguments));
    program.With("TARN_PLUGIN=" FAKE_PLUGIN);
    return program;
}

}  // namespace

TEST(Program, TalksOnStandardErrorAndKeepsDataOnStandardOutput) {
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string out;
        std::string err;
    };
    const Case cases[] = {
        {{}, 0, "analyse", ""},
        {{"--version"}, 0, "tarn ", ""},
        {{"run", "--help"}, 0, "--keep-going", ""},
        {{"bogus"}, 2, "", "bogus"},
        {{"run"}, 2, "", "--script"},
        {{"info", "--adapter", "hw=none"}, 3, "", "hw"},
        {{"--adapter", "connected=0", "run", "--", "-trigger_now"}, 3, "", "isn't connected"},
        {{"run", "--adapter", "hw=18", "--", "-trigger_now"}, 3, "", "Unknown device"},
        {{"run", "--air", "file:/nowhere", "--", "-trigger_now"}, 3, "", "/nowhere"},
        {{"run", "--fault", "ApplyMcc:1", "--", "-trigger_now"}, 3, "", "Failed to set MCC"},
        {{"run", "--log", "/nowhere/log.txt", "--", ""}, 1, "", "/nowhere/log.txt"},
        {{"run", "--script", "/nowhere"}, 1, "", "/nowhere"},
        {{"analyse", "/nowhere"}, 1, "", "/nowhere"},
    };
    for (const auto& [arguments, status, out, err] : cases) {
        const auto run = Tarn(arguments);
        const std::string name = arguments.empty() ? "" : arguments[0] + " " + arguments.back();
        EXPECT_EQ(run.status, status) << name << "\n" << run.err;
        EXPECT_TRUE(out.empty() == run.out.empty() || arguments[0] == "info") << name << "\n" << run.out;
        EXPECT_TRUE(Has(run.out, out)) << name << "\n" << run.out;
        EXPECT_EQ(err.empty(), run.err.empty()) << name << "\n" << run.err;
        EXPECT_TRUE(Has(run.err, err)) << name << "\n" << run.err;
    }
}

TEST(Program, AFullDeviceIsAFailureAndAClosedPipeIsNot) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    int pipe[2];
    ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
    ::close(pipe[0]);
    const std::vector<std::vector<std::string>> commands = {
        {"--help"}, {"info", "--kernels"}, {"run", "--", "-get_platform_info"}, {"run", "--record", "--", "", ""}};
    for (const auto& command : commands) {
        const auto onFull = Program(command).OutputTo(full).Run();
        EXPECT_EQ(onFull.status, 1) << command[0];
        EXPECT_TRUE(Has(onFull.err, "No space left")) << onFull.err;
        const auto onClosed = Program(command).OutputTo(pipe[1]).Run();
        EXPECT_EQ(onClosed.status, 141) << command[0];
        EXPECT_EQ(onClosed.err, "") << command[0];
    }
    ::close(full);
    ::close(pipe[1]);
}

TEST(Program, InfoNamesPluginAdapterAirKernelAndLog) {
    const auto run = Program({"info", "--adapter", "bands=0"}).With("TARN_KERNEL=portable").Run();
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(run.out.starts_with("tarn ")) << run.out;
    for (const char* part : {"libTarnFlows.so", "bands=0", "air", "portable", "--log FILE", "2.4 GHz: 14 at 20 MHz"})
        EXPECT_TRUE(Has(run.out, part)) << part << "\n" << run.out;
    EXPECT_FALSE(Has(run.out, "6-7 GHz")) << run.out;
    const auto badKernel = Program({"info"}).With("TARN_KERNEL=abacus").Run();
    EXPECT_EQ(badKernel.status, 1);
    EXPECT_TRUE(Has(badKernel.err, "abacus") && Has(badKernel.err, "portable")) << badKernel.err;
    EXPECT_TRUE(Has(Program({"info"}).With("TARN_PLUGIN=/nowhere.so").Run().err, "/nowhere.so"));
}

TEST(Run, RecordsEachLineWithEverythingThatCameBack) {
    const auto run = Program({"run", "--record", "--keep-going", "--script", "-"})
                         .Input(
                             "\xEF\xBB\xBF# settings\r\n\r\n"
                             "-band 5.2 -channel 36   # no capture yet\r\n"
                             "-bogus \"a b\"\n"
                             "-get_channel_average")  // no line end
                         .Run();
    EXPECT_EQ(run.status, 1);
    const auto records = Records(run.out);
    ASSERT_EQ(records.size(), 3U) << run.out << run.err;
    EXPECT_EQ(records[0]["line"], "-band 5.2 -channel 36");
    EXPECT_EQ(records[0]["exitCode"], 0);
    EXPECT_EQ(records[0]["left"], "");
    EXPECT_EQ(records[1]["exitCode"], 256);
    EXPECT_EQ(records[1]["left"], "-bogus \"a b\"");
    EXPECT_TRUE(Has(records[1]["output"], "ERROR:")) << records[1];
    EXPECT_EQ(records[2]["output"], "false");
    EXPECT_EQ(run.err, "tarn: line 4: Unrecognized command line option: -bogus \"a b\"\n");
}

TEST(Run, StopsAtTheFirstFailingLineAndShowsItsErrorOnce) {
    const auto run = Tarn({"run", "--", "-get_channel_average", "-rbw 1", "-get_channel_average"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(std::ranges::count(run.out, '\n'), 1) << run.out;
    EXPECT_EQ(run.err, "tarn: line 2: RBW 1 is not valid\n");
}

TEST(Run, AWarningOfASuccessfulLineIsShown) {
    const auto run = Tarn({"run", "--", "-mcc_profile U1"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(Has(run.err, "Invalid MCC value: U1")) << run.err;
}

TEST(Run, PassesOnWhatThePluginSendsAndClosesInOrder) {
    const auto passing = OnFake({"run", "--web", "--", "speak", "plain", "bytes"}).Run();
    EXPECT_EQ(passing.status, 0);
    EXPECT_EQ(passing.out, "{\"web\":1}\ntext\nno\na\xFFz\n");
    EXPECT_EQ(passing.err, "init\ntarn: complaint\ndeinit\ndestroyed\n");

    const auto recording =
        OnFake({"run", "--plain", "--record", "--keep-going", "--", "speak", "plain", "bytes", "fail"}).Run();
    EXPECT_EQ(recording.status, 1);
    const auto records = Records(recording.out);
    ASSERT_EQ(records.size(), 4U) << recording.out;
    EXPECT_EQ(records[0]["messages"], nlohmann::json::array({"{\"web\":0}"}));
    EXPECT_EQ(records[0]["printed"], nlohmann::json::array({"text"}));
    EXPECT_EQ(records[0]["printedErrors"], nlohmann::json::array({"complaint\n"}));
    EXPECT_EQ(records[1]["output"], "yes");
    EXPECT_TRUE(records[1]["messages"].empty());  // those of the line before are gone
    EXPECT_EQ(records[2]["output"], "a\xEF\xBF\xBDz");
    EXPECT_TRUE(Has(recording.err, "line 4: failed with exit code 259")) << recording.err;
}

TEST(Run, AFailedStartIsTheAdaptersAlsoWhenThrownAsAPointer) {
    const auto run = OnFake({"run", "--", "plain"}).With("FAKE_INIT_THROWS=1").Run();
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, "destroyed\ntarn: can't start on this adapter: thrown as a pointer\n");
}

TEST(Run, CtrlCEndsALineThatDoesNotEndByItself) {
    auto program = OnFake({"run", "--", "speak", "sleep"});
    const auto run = program.Signal(SIGINT, [&] { return Has(program.Text("out"), "asleep"); }).Run();
    EXPECT_EQ(run.status, 130);
    EXPECT_TRUE(Has(run.out, "text\nasleep\n")) << run.out;
    EXPECT_TRUE(Has(run.err, "interrupted while line 2 ran")) << run.err;
}

TEST(Run, AnswersALineBeforeTheNextIsWritten) {
    int toProgram[2];
    int fromProgram[2];
    ASSERT_EQ(::pipe2(toProgram, O_CLOEXEC), 0);
    ASSERT_EQ(::pipe2(fromProgram, O_CLOEXEC), 0);
    std::string answers;
    std::thread person([&] {
        char byte = 0;
        for (int k = 0; k < 2; ++k) {
            EXPECT_GT(::write(toProgram[1], "-get_channel_average\n", 21), 0);
            while (::read(fromProgram[0], &byte, 1) == 1 && byte != '\n')
                answers += byte;
        }
        ::close(toProgram[1]);
    });
    const std::string input = "/dev/fd/" + std::to_string(::dup(toProgram[0]));  // inherited
    const auto run = Program({"run", "--record", "--script", input}).OutputTo(fromProgram[1]).Run();
    person.join();
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(std::ranges::count(answers, '{'), 2) << answers;
}

TEST(Analyse, PrintsResultsAndSaysWhatItSkips) {
    const Support::TempFolder temp;
    const fs::path folder = temp.Path() / "my 'captures' #1";
    fs::create_directory(folder);
    WriteCapture(folder / (goodName + "one.txt"));
    WriteCapture(folder / (goodName + "two, too.txt"));
    WriteCapture(folder / "notes.txt");
    fs::create_directory(folder / (goodName + "folder"));
    for (int time = 1; time <= 2; ++time) {
        const auto run = Tarn({"analyse", folder.string()});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(std::ranges::count(run.out, '\n'), 3) << run.out;
        EXPECT_TRUE(Has(run.out, goodName + "two, too.txt")) << run.out;
        EXPECT_TRUE(Has(run.err, "skipped 'notes.txt': has no BAND_")) << run.err;
        EXPECT_TRUE(Has(run.err, "folder': is a folder")) << run.err;
    }
    EXPECT_EQ(TarnHost::ParseResults(Support::ReadText(folder / "result.csv")).size(), 2U);
    EXPECT_EQ(Tarn({"analyse", temp.Path().string()}).status, 0);  // only a folder in it: a message
}

TEST(Analyse, AFolderNamedLikeAKeyIsAFolder) {
    const Support::TempFolder temp;
    fs::create_directory(temp.Path() / "-band");
    WriteCapture(temp.Path() / "-band" / (goodName + "1.txt"));
    const auto before = fs::current_path();
    fs::current_path(temp.Path());
    const auto run = Tarn({"analyse", "--", "-band"});
    fs::current_path(before);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Has(run.out, goodName)) << run.out;
}

TEST(Analyse, ABadFileIsNamedWithItsLineAndCostsNoOther) {
    const Support::TempFolder folder;
    for (const char* run : {"1.txt", "2.txt", "3.txt"})
        WriteCapture(folder.Path() / (goodName + run));
    folder.Write(goodName + "2.txt", "12 ,1\n12 ,oops\n");
    const auto run = Tarn({"analyse", folder.Path().string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(std::ranges::count(run.out, '\n'), 3) << run.out;
    EXPECT_EQ(run.err, "tarn: '" + goodName + "2.txt': line 2: Q isn't a number\ntarn: 2 files of 3 analysed\n");
    EXPECT_EQ(TarnHost::ParseResults(folder.Read("result.csv")).size(), 2U);
}

TEST(Analyse, WhatIsNotItsResultStays) {
    const Support::TempFolder folder;
    WriteCapture(folder.Path() / (goodName + "1.txt"));
    folder.Write("result.csv", "my thesis");
    const auto refused = Tarn({"analyse", folder.Path().string()});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(Has(refused.err, "--force")) << refused.err;
    EXPECT_EQ(folder.Read("result.csv"), "my thesis");
    EXPECT_EQ(Tarn({"analyse", "--force", folder.Path().string()}).status, 0);
    EXPECT_EQ(TarnHost::ParseResults(folder.Read("result.csv")).size(), 1U);
}

TEST(Analyse, AFolderWithoutWritePermissionIsRefusedBeforeTheWork) {
    const Support::TempFolder folder;
    WriteCapture(folder.Path() / (goodName + "1.txt"));
    fs::permissions(folder.Path(), fs::perms::owner_read | fs::perms::owner_exec);
    const bool isPrivileged = ::access(folder.Path().c_str(), W_OK) == 0;
    const auto denied = Tarn({"analyse", folder.Path().string()});
    fs::permissions(folder.Path(), fs::perms::owner_all);
    if (isPrivileged) GTEST_SKIP() << "this user may write everywhere";
    EXPECT_EQ(denied.status, 1);
    EXPECT_TRUE(Has(denied.err, "Permission denied")) << denied.err;
}

TEST(Analyse, CtrlCPrintsWhatIsThereAndKeepsTheResultOfBefore) {
    const Support::TempFolder folder;
    const fs::path first = folder.Path() / (goodName + "0.txt");
    WriteCapture(first, 98304);
    for (int k = 1; k < 400; ++k)
        fs::create_hard_link(first, folder.Path() / (goodName + std::to_string(k) + ".txt"));
    const std::string before = std::string(TarnHost::resultHeader) + "\nold,-1,5.2,36,20,A,\n";
    folder.Write("result.csv", before);
    const fs::path log = folder.Path() / ".log";
    const auto run = Program({"analyse", folder.Path().string(), "--log", log.string()})
                         .Signal(SIGINT, [&] { return Has(Support::ReadText(log), "AddSweep"); })
                         .Run();
    EXPECT_EQ(run.status, 130) << run.err;
    EXPECT_TRUE(Has(run.err, "interrupted: ")) << run.err;
    EXPECT_EQ(folder.Read("result.csv"), before);
}

TEST(Run, AFailedSetUpIsTold) {
    const auto run = Tarn({"run", "--fault", "ConfigTxRx:*", "--", "-channel 6", "-get_platform_info"});
    EXPECT_EQ(run.status, 0);
    EXPECT_FALSE(Has(run.err, "GainCSV")) << "a gain file that isn't there is no trouble";
    const auto measured = Tarn({"measure", "--channel", "6", "--sweeps", "1", "--fault", "ConfigTxRx:*"});
    EXPECT_EQ(measured.status, 1);
    EXPECT_TRUE(Has(measured.err, "ConfigTxRx")) << measured.err;
    EXPECT_FALSE(Has(measured.out, "dBm")) << measured.out;
}

TEST(Terminal, NothingFromOutsideSteersIt) {
    const std::string evil = "\x1b[31m\x07\xC2\x9B\x01";
    const Support::TempFolder folder;
    const std::string captures = folder / ("cap" + evil),
                      capture = "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_" + evil + ".txt";
    std::filesystem::create_directory(captures);
    std::ofstream(captures + "/" + capture) << "1 2\n3 4\n";
    std::ofstream(captures + "/b" + capture) << "1 2\n" << evil << "\n";
    std::ofstream(captures + "/skipped" + evil) << "";
    for (const char* name : {"a1", "a2", "a\x1b[31m"})
        folder.Write(name, "");
    const std::vector<std::vector<std::string>> commands = {
        {"analyse", captures},
        {"info", "--log", folder / ("log" + evil)},
        {"info", "--air", "file:" + captures},
        {"run", "--record", "--keep-going", "--", "-band " + evil, "-x" + evil},
        {"measure", "--air", "file:" + captures, "--as-tuned", "--channel", "36", "--json"},
        {"measure", "--picture", evil + ".png", "--keys", evil},
        {"simulate", captures, "--scene", evil},
        {"--" + evil}};
    for (const auto& command : commands) {
        std::string out = Program(command).OnTerminal().Run().out;
        for (std::size_t at; (at = out.find("\x1b[K")) != std::string::npos;)
            out.erase(at, 3);  // the progress clears its line
        EXPECT_EQ(out.find_first_of("\x1b\x07\x01"), std::string::npos) << command[0] << ":\n" << out;
        EXPECT_FALSE(Has(out, "\xC2\x9B")) << out;
        EXPECT_TRUE(Has(out, "?")) << command[0] << " shows what it replaced:\n" << out;
    }
    const auto typed = Program({"shell"})
                           .With("XDG_STATE_HOME=" + folder.Path().string())
                           .OnTerminal("-save_spectrum " + (folder / "a") + "\t\t\n!quit\n")
                           .Run();
    EXPECT_TRUE(Has(typed.out, "a1") && Has(typed.out, "a2")) << typed.out;
    EXPECT_FALSE(Has(typed.out, "\x1b[31m")) << typed.out;
}

TEST(Run, AnyWaitEndsWithinASecondOfASignal) {
    const Support::TempFolder folder;
    const std::string fifo = folder / "fifo.json";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    struct Case {
        std::vector<std::string> command;
        int signal = SIGHUP;
        std::string typed = {};
    };
    const Case cases[] = {{{"run", "--script", fifo}},
                          {{"run", "--air", "sim:" + fifo, "--", ""}},
                          {{"shell"}},
                          {{"shell"}, SIGINT, "!repeat 4000000000 -band 2.4\n"}};
    for (const auto& [command, signal, typed] : cases) {
        int silent[2];
        ASSERT_EQ(::pipe2(silent, O_CLOEXEC), 0);
        ASSERT_EQ(::write(silent[1], typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
        std::chrono::steady_clock::time_point sent;
        int looks = 0;
        const auto run = Program(command)
                             .InputFrom(silent[0])
                             .Signal(signal,
                                     [&] {
                                         sent = std::chrono::steady_clock::now();
                                         return ++looks > 200;  // it waits by then; where it doesn't it ends anyway
                                     })
                             .Run();
        EXPECT_TRUE(run.status == 128 + signal || run.status == 3) << command[0] << run.status << run.err;
        EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::seconds(20)) << command[0];
        ::close(silent[0]);
        ::close(silent[1]);
    }
}

TEST(Build, NoBinaryLooksForLibrariesInTheCurrentFolder) {
    const fs::path folder = fs::path(TARN_PROGRAM).parent_path();
    int looked = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string bytes = entry.is_regular_file() ? Support::ReadText(entry.path()) : "";
        if (!bytes.starts_with("\x7F"
                               "ELF"))
            continue;
        ++looked;
        for (auto at = bytes.find("$ORIGIN"); at != std::string::npos; at = bytes.find("$ORIGIN", at + 1)) {
            const std::string path = ":" + std::string(bytes.c_str() + at) + ":";
            for (std::size_t colon = 0; colon + 1 < path.size(); colon = path.find(':', colon + 1))
                EXPECT_EQ(path.substr(colon + 1, 7), "$ORIGIN") << entry.path() << ": " << path;
        }
    }
    EXPECT_GT(looked, 3);
}

/// A program that waits for its next line, and gets a signal once it has set up the radio.
ProgramRun WaitingAndGetting(int signal, std::vector<std::string> options, const std::string& temp) {
    int silent[2];
    if (::pipe2(silent, 0) != 0) return {};  // both ends inherited: never at its end
    const std::string journal = temp + "/journal";
    options.insert(options.end(), {"run", "--script", "/dev/fd/" + std::to_string(silent[0]), "--journal", journal});
    const auto isReady = [&] {
        const std::string calls = Support::ReadText(journal);
        return Has(calls, "SetManual") || Has(calls, "ConfigTxRx");
    };
    // a sanitizer would take the crash for itself
    auto run = Program(options)
                   .With("TMPDIR=" + temp)
                   .With("ASAN_OPTIONS=handle_segv=0")
                   .With("TSAN_OPTIONS=handle_segv=0")
                   .Signal(signal, isReady)
                   .Run();
    ::close(silent[0]);
    ::close(silent[1]);
    return run;
}

TEST(Run, ASecondSignalEndsWhatTheFirstWaitsFor) {
    TarnHost::InterruptWatch watch;
    std::promise<void> release, isOver;
    const auto status = TarnHost::RunWatched(watch, [&] {
        {
            const TarnHost::InterruptWatch::Finishing finishing(watch);
            ::raise(SIGINT);
            ::raise(SIGINT);
            release.get_future().wait();
        }
        isOver.set_value();
        return TarnHost::Success;
    });
    EXPECT_FALSE(status);
    EXPECT_EQ(watch.Status(), TarnHost::Interrupted);
    release.set_value();
    isOver.get_future().wait();
}

TEST(Run, CtrlCEndsTheWaitForTheNextLine) {
    const Support::TempFolder folder;
    const auto run = WaitingAndGetting(SIGTERM, {}, folder.Path().string());
    EXPECT_EQ(run.status, 143) << run.err;
    EXPECT_EQ(run.err, "tarn: interrupted\n");
}

TEST(Run, ACrashLeavesAReportAndTheShellsStatus) {
    const Support::TempFolder folder;
    const auto run = WaitingAndGetting(SIGSEGV, {}, folder.Path().string());
    EXPECT_EQ(run.status, 139);
    const std::string said = "crashed; the report is ";
    ASSERT_EQ(run.err.substr(0, said.size()), said);
    const std::string report = Support::ReadText(run.err.substr(said.size(), run.err.size() - said.size() - 1));
    EXPECT_TRUE(report.starts_with("signal 11 SIGSEGV\n")) << report;
    fs::remove_all(folder / "Crash");
    EXPECT_EQ(WaitingAndGetting(SIGSEGV, {"--no-crash-report"}, folder.Path().string()).status, 139);
    EXPECT_FALSE(fs::exists(folder / "Crash"));
}

TEST(Run, PublishesEachOperationOfATriggerWithItsTime) {
    const Support::TempFolder folder;
    for (const char* name : {"trace.jsonl", "trace.json"})
        ASSERT_EQ(Tarn({"--publish", folder / name, "run", "--", "-band 5.2 -channel 36 -trigger_now"}).status, 0);
    std::istringstream lines(folder.Read("trace.jsonl"));
    std::map<std::string, int> open;
    double trigger_ms = 0, sweep_ms = 0;
    for (std::string line; std::getline(lines, line);) {
        const auto json = nlohmann::json::parse(line);
        const std::string function = json["function"];
        open[function] += json["kind"] == "begin" ? 1 : -1;
        if (function == "TarnWifiFlows::TriggerNow") trigger_ms = json["elapsed_ms"];
        if (function == "CLmnSA::AddSweep") sweep_ms = json["elapsed_ms"];
    }
    for (const auto& [function, count] : open)
        EXPECT_EQ(count, 0) << function;
    EXPECT_TRUE(sweep_ms > 0 && trigger_ms > sweep_ms) << trigger_ms << " ms, " << sweep_ms << " ms";
    EXPECT_GE(nlohmann::json::parse(folder.Read("trace.json")).size(), 2 * open.size());
    const auto refused = Tarn({"--publish", folder / "no/file", "info"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(Has(refused.err, "can't publish to")) << refused.err;
}

TEST(Simulate, WritesCapturesThatAnalysisReads) {
    const Support::TempFolder temp;
    const fs::path folder = temp.Path() / "new" / "folder";
    const std::vector<std::string> command = {"simulate", folder.string(), "--adapter", "bands=0+1,samples=4096"};
    const auto first = Tarn(command);
    ASSERT_EQ(first.status, 0) << first.err;
    const auto files = std::distance(fs::directory_iterator(folder), {});
    EXPECT_GE(files, 10);
    const auto again = Tarn(command);
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(Has(again.err, "--force")) << again.err;
    auto forced = command;
    forced.push_back("--force");
    EXPECT_EQ(Tarn(forced).status, 0);

    const auto analysis = Tarn({"analyse", folder.string()});
    EXPECT_EQ(analysis.status, 0) << analysis.err;
    EXPECT_EQ(analysis.err, "");
    EXPECT_EQ(std::ranges::count(analysis.out, '\n'), files + 1);
    for (const auto& row : TarnHost::ParseResults(Support::ReadText(folder / "result.csv"))) {
        const double power = std::stod(row.power);
        EXPECT_TRUE(power > -130 && power < 0) << row.file << " " << row.power;
    }
}

TEST(Simulate, ItsCapturesAreHeardOnTheirChannelsOnly) {
    const Support::TempFolder folder;
    const std::string adapter = "bands=0,antennas=1,samples=4096";
    ASSERT_EQ(Tarn({"simulate", folder.Path().string(), "--adapter", adapter}).status, 0);
    const auto heard = [&](const std::string& channel, const std::string& option) {
        return Tarn({"run", "--adapter", adapter, "--air", "file:" + folder.Path().string(), option, "--",
                     "-channel " + channel + " -trigger_now"});
    };
    EXPECT_EQ(heard("6", "--keep-going").status, 0);
    const auto other = heard("7", "--keep-going");
    EXPECT_NE(other.status, 0);
    EXPECT_TRUE(Has(other.err, "no stored capture at 2442 MHz")) << other.err;
    EXPECT_EQ(heard("7", "--as-tuned").status, 0);
}

TEST(Simulate, AFailingRadioLeavesTheWholeFilesBefore) {
    const Support::TempFolder folder;
    const auto run =
        Tarn({"simulate", folder.Path().string(), "--adapter", "samples=4096", "--fault", "ReadCaptureEx:3"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Has(run.err, "ReadCaptureEx")) << run.err;
    int files = 0;
    for (const auto& entry : fs::directory_iterator(folder.Path())) {
        ++files;
        const std::string text = Support::ReadText(entry.path());
        EXPECT_EQ(std::ranges::count(text, '\n'), 4096) << entry.path();
    }
    EXPECT_EQ(files, 2);
}
