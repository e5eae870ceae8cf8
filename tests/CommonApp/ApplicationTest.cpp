#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Frame/Application.h"
#include "Support/TempFolder.h"
#include "Support/Thrown.h"
#include "TestStreams.h"

namespace {

struct Tool : Common::Application {
    Tool() : Application("Tool", "1.2", "Dec 11 2023") {}
    using Application::m_context;

    int RunWith(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "bin//tool");
        std::vector<char*> argv;
        for (auto& argument : arguments)
            argv.push_back(argument.data());
        return Run(static_cast<int>(argv.size()), argv.data());
    }
    std::string Variable(const std::string& name) const { return m_context.GetGlobal().GetOrEmpty(name); }
};

/// A command that does what the test says.
struct Command : CmdProcessor::ACommand {
    Command(const std::string& name, std::function<int(Command&)> action, unsigned arguments = 0)
        : ACommand(CmdProcessor::CommandDescription{.helpNote = {"Help of " + name},
                                                    .key = "-" + name,
                                                    .description = "Does " + name,
                                                    .name = name,
                                                    .arguments = arguments}),
          m_action(std::move(action)) {}
    int Execute() override { return m_action(*this); }
    std::function<int(Command&)> m_action;
};

/// Throws `value` in that form.
template <typename Failure>
auto ByValue(Failure value) {
    return [value] { throw value; };
}
template <typename Failure>
auto AsPointer(Failure value) {
    return [value] { throw new Failure(value); };
}

}  // namespace

TEST(Handlers, PrintEachFailureAndGiveItsCodeInBothForms) {
    struct Case {
        std::function<void()> thrown[2];
        std::string error, detail;
        int code;
    };
    const auto both = [](auto failure, const std::string& error, const std::string& detail, int code) {
        return Case{{ByValue(failure), AsPointer(failure)}, error, detail, code};
    };
    const Case cases[] = {
        both(CmdLine::Exceptions::ParsingException("p"),
             "\nCommand line error: p\nRun ' -?' to see the list of allowed command line options\n\n", "", 256),
        both(CmdLine::Exceptions::KeyNotFoundException("-k"),
             "\nCommand line error: mandatory key <-k> was not specified.\n"
             "Run ' -?' to see the list of allowed command line options\n\n",
             "", 256),
        both(Common::ErrorLevelException("done", 17), "\ndone\n", "", 17),
        both(Common::ErrorLevelException("", 3), "", "", 3),
        both(CSvErrorCodeException("open", 2, "f.cpp", 5, "g"),
             "\nError: open\nDetails: (2) No such file or directory\n", "f.cpp(5)\n", 2),
        both(CSvMsgException("located", "f.cpp", 9, "g"), "\nError: located\n", "f.cpp(9)\n", 257),
        both(CSvMsgException("", nullptr, 0, nullptr), "\nError: \n", "(0)\n", 257),
        both(CSvDriverMsgException("driver", -4, "d.cpp", 1, ""), "\nError: driver, -4\n", "d.cpp(1)\n", 257),
        both(CSvLegacyMsgException("legacy", 1, "l.cpp", 1, ""), "\nError: legacy\n", "", 258),
        both(Common::Exception("plain"), "\nError: plain\n", "", 258),
        both(Utilities::Exception("engine"), "\nError: engine\n", "", 258),
        both(std::runtime_error("run"), "\nError: run\n", "", 258),
        Case{{[] { throw 42; }, [] { throw static_cast<std::exception*>(nullptr); }}, "", "", 259},
        Case{{[] { throw nullptr; }, [] { throw "text"; }}, "", "", 259},
        Case{{[] {}, [] {}}, "", "", 0},
    };
    Tool tool;
    for (const auto& c : cases)
        for (const auto& thrown : c.thrown) {
            CapturedStreams captured;
            EXPECT_EQ(tool.RunGuarded(thrown), c.code) << c.error;
            EXPECT_EQ(captured.error.str(), c.error);
            EXPECT_EQ(captured.detail.str(), c.detail) << c.error;
        }
}

TEST(Handlers, LeaveNothingOutEvenWhenTheyThrowThemselves) {
    struct Throwing : Tool {
        std::int32_t HandleException(const std::exception&) override { throw std::logic_error("in a handler"); }
    } tool;
    EXPECT_EQ(tool.RunGuarded([] { throw new Common::Exception("x"); }), 259);
}

TEST(Caught, TellsTheTextInBothFormsBeforeTheHandlerRuns) {
    for (const auto& thrown : {std::function<void()>(ByValue(Utilities::Exception("engine"))),
                               std::function<void()>(AsPointer(Utilities::Exception("engine")))}) {
        std::string text = "-";
        const auto observe = [&](const Common::Caught& caught) {
            text = caught.TextOr("none");
            EXPECT_TRUE(caught.As<Utilities::Exception>() && !caught.As<Common::Exception>());
            throw 5;
        };
        EXPECT_EQ(Tool().RunGuarded(thrown, observe), 258) << "an observer that fails changes nothing";
        EXPECT_EQ(text, "engine");
    }
    EXPECT_EQ(Support::ThrownText([] { throw 1; }), "no std::exception");
}

TEST(Run, SetsTheVariablesAndPrintsTheBanner) {
    CapturedStreams captured;
    Tool tool;
    EXPECT_EQ(tool.RunWith({"left", "over"}), 0);
    EXPECT_EQ(captured.output.str(), "\nTool, Version 1.2\nCopyright (C) 2023\n\n");
    EXPECT_EQ(captured.trace.str(), "Tool, version 1.2\nCommand line: tool left over\n\n");
    EXPECT_EQ(tool.Variable("Application.Path"), "bin\\tool");
    EXPECT_EQ(tool.Variable("Application.Directory"), "bin\\");
    EXPECT_EQ(tool.Variable("Application.DumpFileName"), "bin\\tool.dmp");
    EXPECT_EQ(Common::Application::GetDirectory(), "bin\\");
    EXPECT_EQ(Tool().Run(0, nullptr), 0);
}

TEST(Run, ShowsHelpForEveryHelpSwitch) {
    for (const char* key : {"/?", "--help", "-h", "-z"}) {
        CapturedStreams captured;
        Tool tool;
        auto longName = MakeCounted<Command>("a-rather-long-name", [](Command&) { return 0; });
        tool.AddCommand(longName);
        EXPECT_EQ(tool.RunWith({key}), 0) << key;
        EXPECT_NE(captured.output.str().find("EEPROM Version 1.2\n\nUsage:\n    tool [options]\n\nAvailable options:\n"
                                             "    -?, -h             Shows this page\n"
                                             "    -help <OPTION>     Shows detailed help on specified option\n\n"
                                             "    a-rather-long-name Does a-rather-long-name\n"),
                  std::string::npos)
            << captured.output.str();
        EXPECT_EQ(captured.error.str(), "");
    }
}

TEST(Run, ShowsTheHelpItemOfACommandAndEndsOnlyWithTheDash) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{{"-help", "go"}, {"/helpgo", "-go"}}) {
        CapturedStreams captured;
        Tool tool;
        bool ran = false;
        tool.GetProcessor().AddCommand(MakeCounted<Command>("go", [&](Command&) { return ran = true, 7; }), false, "");
        EXPECT_EQ(tool.RunWith(arguments), arguments[0] == "-help" ? 0 : 7);
        EXPECT_NE(captured.output.str().find("Help of go"), std::string::npos);
        EXPECT_EQ(ran, arguments[0] != "-help");
    }
    CapturedStreams captured;
    Tool().RunWith({"-help", "stop"});
    EXPECT_NE(captured.output.str().find("No help item for stop\n"), std::string::npos);
}

TEST(Run, FillsATemplateInPlace) {
    CapturedStreams captured;
    const Support::TempFolder folder;
    const auto path = folder.Write("frame", "$(Application.Name) $(unknown)$(Application.Year)");
    EXPECT_EQ(Tool().RunWith({"/format", path}), 0);
    EXPECT_EQ(folder.Read("frame"), "Tool 2023\n");
    EXPECT_EQ(captured.error.str(), "\nFile frame created using template frame\n");
    EXPECT_EQ(Tool().RunWith({"/format", folder / "missing"}), 258);
}

TEST(Run, OpensATraceFileAndSetsTheLevels) {
    CapturedStreams captured;
    const Support::TempFolder folder;
    const auto path = folder / "trace.log";
    {
        Tool tool;
        EXPECT_EQ(tool.RunWith({"-trace=" + path + ",5", "-log=3", "-log=6"}), 0);
        EXPECT_EQ(tool.Variable("Application.DumpFileName"), path);
    }
    EXPECT_EQ(GetDebugPrint().GetLevel(1), 5);
    EXPECT_EQ(captured.streams.debugMask, 6u);
    EXPECT_EQ(captured.streams.traceStream, nullptr) << "the stream went with the tool";
    EXPECT_TRUE(folder.Read("trace.log").starts_with("Tool, version 1.2\n"));
}

TEST(Run, MapsFailuresOfCommandsToExitCodes) {
    const auto run = [](std::function<int(Command&)> action, std::vector<std::string> arguments) {
        CapturedStreams captured;
        Tool tool;
        tool.GetProcessor().AddCommand(MakeCounted<Command>("go", std::move(action), 1), false, "");
        const int code = tool.RunWith(std::move(arguments));
        return std::to_string(code) + captured.error.str();
    };
    EXPECT_EQ(run([](Command&) -> int { throw 5; }, {"-go", "x"}), "259");
    EXPECT_EQ(run([](Command&) { return 12; }, {"-go", "x"}), "12");
    EXPECT_EQ(run([](Command& c) -> int { throw Common::Exception(c.GetArgument(1)); }, {"-go", "$(Application.Name)"}),
              "258\nError: Tool\n");
    EXPECT_EQ(run([](Command&) { return 0; }, {"-go"}),
              "256\nCommand line error: invalid usage of key <go>: argument is missing.\n"
              "Run 'tool -?' to see the list of allowed command line options\n\n");
}

TEST(Processor, StopsAtTheFirstResultAndKeepsTheRestQueued) {
    Environment::AContext context;
    CmdProcessor::Processor processor(&context);
    std::string calls;
    const auto note = [&](Command& c) {
        calls += c.GetName() + c.GetArgument(1) + " ";
        return c.GetArgument(1) == "2" ? 9 : 0;
    };
    processor.AddCommand(MakeCounted<Command>("a", note, 1), false, "");
    auto tokens = CmdLine::Tokenize("-a 1 -a 2 -a 3");
    processor.GetParser().Parse(tokens);
    EXPECT_EQ(processor.Execute(""), 9);
    EXPECT_EQ(calls, "a1 a2 ");
    EXPECT_EQ(processor.Execute(""), 0);
    EXPECT_EQ(calls, "a1 a2 a3 ");
    EXPECT_EQ(context.GetGlobal().GetOrEmpty("1"), "3");
    EXPECT_EQ(CmdProcessor::Processor(nullptr).Execute(""), -1);
}

TEST(Queues, HandTextsFromOneThreadToAnother) {
    Tool tool;
    auto& queue = tool.GetQueues()[0];
    EXPECT_FALSE(queue.TryPop());
    std::thread writer([&] { queue.Push("a"); });
    EXPECT_EQ(queue.Pop(), "a");
    writer.join();
}
