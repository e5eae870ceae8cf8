// The frame of every tool of this family: one command line from the banner to the exit code.
//
// A plug-in doesn't call `Run`: it takes the processor with its parser, `AddKey`, the exception handlers and `exitCode`
// from here, and puts `RunGuarded` around each command.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <fstream>
#include <mutex>
#include <optional>
#include <string>

#include "Caught.h"
#include "CmdProcessor/CmdProcessor.h"
#include "Exceptions.h"
#include "Xml/Base.h"

namespace AnvilTool {

/// Texts that one thread leaves for another.
class BlockingQueue {
public:
    void Push(std::string text);
    /// Waits until there is one.
    std::string Pop();
    std::optional<std::string> TryPop();

private:
    std::deque<std::string> m_texts;
    std::mutex m_lock;
    std::condition_variable m_added;
};

using Queues = std::array<BlockingQueue, 2>;

class IAnvilTool {
public:
    virtual std::int32_t Run(int argc, char** argv) = 0;
    virtual Queues& GetQueues() = 0;
    virtual std::string GetStatus() = 0;
    virtual ~IAnvilTool() = default;
};

}  // namespace AnvilTool

namespace Common {

/// Exit codes of failures that carry none of their own.
enum ExitCode : std::int32_t {
    ExitCommandLine = 256,
    ExitLocatedMessage = 257,
    ExitException = 258,
    ExitUnknownException = 259,
};

class Application : public AnvilTool::IAnvilTool {
public:
    Application(std::string name, std::string version, std::string date);
    /// @param configuration  XML text of a profile
    /// @throws Common::Exception when there is no root in it
    Application(std::string name, std::string version, std::string date, const std::string& configuration);
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Prints the banner, parses, executes. Once for an object. No exception leaves it.
    std::int32_t Run(int argc, char** argv) override;
    AnvilTool::Queues& GetQueues() override { return m_queues; }
    std::string GetStatus() override { return "{}"; }
    ~Application() override;
    virtual void ParseCommandLine(CmdLine::TokenList& tokens);
    virtual std::int32_t Execute();
    virtual void OnInitialize() {}
    virtual void OnTerminate(std::int32_t code);
    /// A node of the profile by its path; null when there is none.
    virtual const XML::Node* FindConfiguration(const std::string& path);

    // Each prints the failure and answers its exit code.
    virtual std::int32_t HandleException(const std::exception& failure);
    virtual std::int32_t HandleDriverException(const CSvDriverMsgException& failure);
    virtual std::int32_t HandleMsgException(const CSvMsgException& failure);
    virtual std::int32_t HandleErrorCodeException(const CSvErrorCodeException& failure);
    virtual std::int32_t HandleErrorLevelException(const ErrorLevelException& failure);
    virtual std::int32_t HandleParsingException(const CmdLine::Exceptions::ParsingException& failure);

    virtual CmdProcessor::Processor& GetProcessor() { return m_processor; }
    virtual void AddCommand(const CountedPtr<CmdProcessor::ICommand>& command);
    virtual void AddKey(const CountedPtr<CmdLine::IKey>& key, bool atFront);
    virtual std::string GetHeader() { return ""; }
    virtual std::string GetCopyright();
    virtual std::string GetHelp();
    virtual std::string GetHelpFooter() { return ""; }
    virtual std::string GetUserGuide();
    virtual void OnCommandLineParsed() {}
    virtual void ShowHelp() { m_showHelp = true; }
    virtual void ShowUserGuide() { m_showUserGuide = true; }

    /// The command "-help <OPTION>": prints the help item and ends the run with 0.
    class CmdHelp : public CmdProcessor::ACommand {
    public:
        explicit CmdHelp(Application* application);
        int Execute() override;

    private:
        Application* m_application;
    };

    /// Runs `body` and answers 0, or the exit code of what it threw, by the handlers above. Nothing leaves it.
    /// @param observe  takes the `const Caught&` before the handler prints it
    template <typename Body, typename Observer>
    std::int32_t RunGuarded(Body&& body, Observer&& observe) {
        std::int32_t code = 0;
        const auto end = [&](const Caught& caught) {
            RunCaught([&] { observe(caught); }, [](const Caught&) {});
            code = HandleCaught(caught);
        };
        RunCaught(std::forward<Body>(body), end);
        return code;
    }
    template <typename Body>
    std::int32_t RunGuarded(Body&& body) {
        return RunGuarded(std::forward<Body>(body), [](const Caught&) {});
    }

    /// Writes `target`, the whole text of the file `source` with the references in it replaced and a line end behind;
    /// both may be one file. @throws Common::Exception* when either can't be done
    static void FillTemplate(const std::string& source, const std::string& target, const NamedStorage& variables);

    /// Folder of the program, with its closing separator, once `Run` has begun.
    static const std::string& GetDirectory();

protected:
    /// Reads a profile, XML text or its binary form, in the place of the one before: sets its variables and registers
    /// its commands. @throws Common::Exception* when it can't be read
    void LoadProfile(std::istream& stream);

    std::string m_name;
    std::string m_date;
    std::string m_path;
    std::string m_version;
    std::string m_year;  // of the date
    Environment::AContext m_context;
    XML::Base m_configuration;
    std::ofstream m_traceFile;
    bool m_showUserGuide = false;
    CmdProcessor::Processor m_processor;
    bool m_showHelp = false;
    std::int32_t exitCode = 0;
    AnvilTool::Queues m_queues;

private:
    std::int32_t HandleCaught(const Caught& caught) noexcept;
    void SetVariables();
    void AddBuiltInKeys();
    void FormatFile();

    // Handlers of the built-in keys.
    void PrintHelpItem(std::string item);
    void SetDebugMask(unsigned long mask);
    void OpenTraceFile(std::string path);
    void SetTraceLevel(unsigned long level);

    std::string m_formatTemplate;
    std::string m_formatTarget;
};

}  // namespace Common
