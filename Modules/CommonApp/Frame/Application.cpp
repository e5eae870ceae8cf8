#include "Frame/Application.h"

#include <csignal>
#include <sstream>

#include "Format.h"
#include "OSAL/OSAL.h"
#include "OSAL/WholeFile.h"
#include "Streams/AppStreams.h"
#include "Xml/BinaryParser.h"

namespace AnvilTool {

void BlockingQueue::Push(std::string text) {
    {
        const std::lock_guard guard(m_lock);
        m_texts.push_back(std::move(text));
    }
    m_added.notify_one();
}

std::string BlockingQueue::Pop() {
    std::unique_lock guard(m_lock);
    m_added.wait(guard, [this] { return !m_texts.empty(); });
    std::string text = std::move(m_texts.front());
    m_texts.pop_front();
    return text;
}

std::optional<std::string> BlockingQueue::TryPop() {
    const std::lock_guard guard(m_lock);
    if (m_texts.empty()) return std::nullopt;
    std::string text = std::move(m_texts.front());
    m_texts.pop_front();
    return text;
}

}  // namespace AnvilTool

namespace Common {

namespace {

using Streams::AppStreams;

constexpr int printDevice = 1;  // of the debug print: the one that a trace file's level sets

std::string applicationDirectory;
volatile std::sig_atomic_t wasInterrupted = 0;

extern "C" void OnInterrupt(int) {
    wasInterrupted = 1;
}

std::string Normalized(std::string path) {
    OSAL::NormalizePath(path);
    return path;
}

}  // namespace

Application::Application(std::string name, std::string version, std::string date)
    : m_name(std::move(name)), m_date(std::move(date)), m_version(std::move(version)), m_processor(&m_context) {
    m_year = m_date.substr(m_date.rfind(' ') + 1);  // the whole date when it has no blank
}

Application::Application(std::string name, std::string version, std::string date, const std::string& configuration)
    : Application(std::move(name), std::move(version), std::move(date)) {
    std::istringstream stream(configuration);
    if (m_configuration.Load(stream, true).fail() || m_configuration.GetRoot()->GetChildren().empty())
        throw Exception("Configuration is corrupted.");
}

Application::~Application() {
    auto* streams = SingletonWrapper<AppStreams>::peekObject();
    if (streams && streams->traceStream == &m_traceFile) streams->traceStream = nullptr;
}

std::int32_t Application::Run(int argc, char** argv) {
    GetDebugPrint().SetDevice(printDevice, SingletonWrapper<AppStreams>::accessObject()->device);
    GetDebugPrint().SetLevel(printDevice, 9);
    m_path = Normalized(argc > 0 ? argv[0] : "");
    CmdLine::TokenList tokens;
    for (int i = 1; i < argc; ++i)
        tokens.emplace_back(argv[i]);
    const auto joined = CmdLine::JoinTokens(tokens);
    const std::string title = Format("${1}, Version ${2}") % m_name % m_version;

    exitCode = 0;
    AppStreams::GetOutput() << GetHeader() << "\n" << title << "\n" << GetCopyright() << "\n" << std::endl;
    const auto failure = RunGuarded([&] {
        SetVariables();
        ParseCommandLine(tokens);
        AppStreams::GetTrace() << m_name << ", version " << m_version << "\nCommand line: " << OSAL::FileNameOf(m_path)
                               << " " << joined << std::endl;
        OnInitialize();
        exitCode = Execute();
    });
    if (failure != 0) exitCode = failure;
    RunCaught([&] { OnTerminate(exitCode); }, [](const Caught&) {});  // the run's own result stands
    return exitCode;
}

void Application::SetVariables() {
    auto& variables = m_context.GetGlobal();
    variables.Set("Application.Name", m_name);
    variables.Set("Application.Version", m_version);
    variables.Set("Application.Date", m_date);
    variables.Set("Application.Year", m_year);
    variables.Set("Application.Directory", OSAL::DirectoryOf(m_path));
    variables.Set("Application.Filename", OSAL::FileNameOf(m_path));
    variables.Set("Application.Path", m_path);
    variables.Set("Application.DumpFileName", OSAL::StemOf(m_path) + ".dmp");
    variables.Set("Device.GenericName", "Halden");
    applicationDirectory = OSAL::DirectoryOf(m_path);
}

void Application::ParseCommandLine(CmdLine::TokenList& tokens) {
    std::signal(SIGINT, &OnInterrupt);
    AddBuiltInKeys();
    m_processor.AddCommand(MakeCounted<CmdHelp>(this), true, "");
    m_processor.GetParser().Parse(tokens);
    OnCommandLineParsed();
    if (m_formatTarget.empty()) m_formatTarget = m_formatTemplate;
    if (!m_formatTemplate.empty()) FormatFile();
}

void Application::AddBuiltInKeys() {
    using CmdLine::MakeKey;
    for (const char* name : {"/\\?", "--help", "-h", "-?"})
        AddKey(MakeKey<Application>(name, this, &Application::ShowHelp), false);
    AddKey(MakeKey<Application>("/help*", this).WithArgument<std::string>(&Application::PrintHelpItem), true);
    AddKey(MakeKey<Application>("/user-guide", this, &Application::ShowUserGuide), false);
    AddKey(MakeKey<Application>("-log=*", this).WithArgument<unsigned long>(&Application::SetDebugMask), false);
    AddKey(MakeKey<Application>("-trace=*,*", this)
               .WithArgument<std::string>(&Application::OpenTraceFile)
               .WithArgument<unsigned long>(&Application::SetTraceLevel),
           false);
    AddKey(MakeKey<Application>("-trace=*", this).WithArgument<std::string>(&Application::OpenTraceFile), false);
    AddKey(CmdLine::MakeDataKey("/format").WithData(&m_formatTemplate).WithData(&m_formatTarget), false);
}

std::int32_t Application::Execute() {
    auto& output = AppStreams::GetOutput();
    if (m_showHelp) {
        Streams::basic_pausable_ostream<char> pages(output.rdbuf(), AppStreams::GetInput().rdbuf(),
                                                    "Press ENTER to continue");
        pages << GetHelp() << std::flush;
        throw new ErrorLevelException("", 0);
    }
    if (m_showUserGuide) {
        output << GetUserGuide() << std::endl;
        throw new ErrorLevelException("", 0);
    }
    return m_processor.Execute("");
}

void Application::OnTerminate(std::int32_t) {
    if (auto* device = SingletonWrapper<AppStreams>::accessObject()->device) device->Flush();
    AppStreams::GetTrace() << std::endl;
    if (m_traceFile.is_open()) m_traceFile.close();
}

const XML::Node* Application::FindConfiguration(const std::string& path) {
    return m_configuration.GetRoot() ? m_configuration.GetRoot()->FindChild(path) : nullptr;
}

void Application::LoadProfile(std::istream& stream) {
    m_configuration.Abort();           // a stream that is too short for either form leaves nothing
    const auto first = stream.peek();  // no text begins with the magic of the binary form
    if (first == 'X')
        XML::BinaryParser().Parse(stream, m_configuration.GetListener());
    else
        m_configuration.Load(stream, true);
    const auto& root = m_configuration.GetRoot();
    if (stream.fail() || !root || root->GetChildren().empty()) throw new Exception("Could not read profile");
    for (const auto& [name, profile] : root->GetChildren()) {
        m_context.Load(profile.Get());
        m_processor.LoadProfile(*profile);
    }
}

void Application::AddCommand(const CountedPtr<CmdProcessor::ICommand>& command) {
    m_processor.Register(command, false, false, &m_processor.GetQueue(""));
}

void Application::AddKey(const CountedPtr<CmdLine::IKey>& key, bool atFront) {
    m_processor.AddKey(key, m_configuration.GetRoot().Get(), atFront);
}

std::string Application::GetCopyright() {
    return "Copyright (C) " + m_year;
}

std::string Application::GetHelp() {
    return m_context.GetGlobal().Expanded(m_processor.GetHelpPage() + GetHelpFooter(), true);
}

std::string Application::GetUserGuide() {
    return m_context.GetGlobal().Expanded(m_processor.GetUserGuide(), true);
}

const std::string& Application::GetDirectory() {
    return applicationDirectory;
}

void Application::FillTemplate(const std::string& source, const std::string& target, const NamedStorage& variables) {
    std::ifstream file(source, std::ios_base::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file || text.bad()) throw new Exception(Format("File ${1} can't be read") % OSAL::FileNameOf(source));
    const auto written = OSAL::WriteWholeFile(target, variables.Expanded(text.str(), true) + "\n");
    if (!written) throw new Exception(written.Reason());
}

void Application::FormatFile() {
    FillTemplate(m_formatTemplate, m_formatTarget, m_context.GetGlobal());
    throw new ErrorLevelException(Format("File ${1} created using template ${2}") % OSAL::FileNameOf(m_formatTarget) %
                                      OSAL::FileNameOf(m_formatTemplate),
                                  0);
}

void Application::PrintHelpItem(std::string item) {
    AppStreams::GetOutput() << m_processor.GetHelpItem(item) << std::flush;
}

void Application::SetDebugMask(unsigned long mask) {
    SingletonWrapper<AppStreams>::accessObject()->debugMask = mask;
}

void Application::OpenTraceFile(std::string path) {
    if (m_traceFile.is_open()) m_traceFile.close();
    m_traceFile.clear();
    m_traceFile.open(path, std::ios_base::out | std::ios_base::trunc);
    m_context.GetGlobal().Set("Application.DumpFileName", path);
    AppStreams::GetTrace() << std::endl;
    SingletonWrapper<AppStreams>::accessObject()->traceStream = &m_traceFile;
}

void Application::SetTraceLevel(unsigned long level) {
    GetDebugPrint().SetLevel(printDevice, static_cast<int>(level));
    GetDebugPrint().SetFormatter(new CLogFormatterBrief);
}

Application::CmdHelp::CmdHelp(Application* application)
    : ACommand(CmdProcessor::CommandDescription{.helpNote = {"Shows detailed help on specified option"},
                                                .hint = "-help <OPTION>",
                                                .key = "-help",
                                                .name = "help",
                                                .arguments = 1}),
      m_application(application) {}

int Application::CmdHelp::Execute() {
    m_application->PrintHelpItem(GetArgument(1));
    throw new ErrorLevelException("", 0);
}

}  // namespace Common
