#include "FormatTool.h"

#include <fstream>
#include <iostream>

#include "Commands.h"
#include "Format.h"
#include "OSAL/Paths.h"
#include "Streams/AppStreams.h"
#include "Xml/Node.h"

namespace TarnFormat {

FormatTool::FormatTool() : Application("Tarn Format", TARN_VERSION, TARN_BUILD_DATE) {
    RegisterClasses();
}

void FormatTool::ParseCommandLine(CmdLine::TokenList& tokens) {
    for (const auto& command : OwnCommands())
        GetProcessor().AddCommand(command, false, "");
    for (const auto& option : OptionNotes())
        AddCommand(option);
    if (tokens.empty()) ShowHelp();
    if (!tokens.empty() && tokens.front() != "-help") {
        if (tokens.back() == "/format") throw new CmdLine::Exceptions::ArgumentMissingException("/format");
        ParseSettings(tokens);
    }
    Application::ParseCommandLine(tokens);
    const bool showsPage = m_showHelp || m_showUserGuide;  // "-?" leaves what its wildcard took
    if (!showsPage && !tokens.empty()) throw new CmdLine::Exceptions::UnexpectedException(CmdLine::JoinTokens(tokens));
}

void FormatTool::ParseSettings(CmdLine::TokenList& tokens) {
    using CmdLine::MakeKey;
    const auto setName = [](FormatTool& tool, std::string name) { tool.m_variable = std::move(name); };
    CmdLine::Parser settings;
    settings.AddKey(MakeKey<FormatTool>("-profile", this).WithArgument<std::string>(&FormatTool::ReadProfile));
    settings.AddKey(MakeKey<FormatTool>("-set", this)
                        .WithArgument<std::string>(setName)
                        .WithArgument<std::string>(&FormatTool::SetVariable));
    settings.Parse(tokens);
}

void FormatTool::ReadProfile(std::string path) {
    std::ifstream file(path, std::ios_base::binary);
    if (!file) throw new Common::Exception(Common::Format("File ${1} can't be read") % OSAL::FileNameOf(path));
    LoadProfile(file);
    for (const auto& [name, profile] : m_configuration.GetRoot()->GetChildren())
        QueueKeyless(*profile);
}

void FormatTool::QueueKeyless(const XML::Node& profile) {
    const auto id = profile.GetOrEmpty("id");
    if (!id.empty()) m_queues.push_back(id);
    for (const auto& [path, node] : profile.FindAll("Command"))
        if (node->GetOrEmpty("key").empty())
            GetProcessor().GetQueue(id).push_back(
                {GetProcessor().FindCommand(node->GetOrEmpty("name")), MakeCounted<Environment::Variables>()});
}

void FormatTool::SetVariable(std::string value) {
    m_context.GetGlobal().Set(m_variable, value);
}

std::int32_t FormatTool::Execute() {
    if (m_showHelp || m_showUserGuide) return Application::Execute();
    for (const auto& queue : m_queues)
        if (const auto result = GetProcessor().Execute(queue); result != 0) return result;
    return Application::Execute();
}

namespace {

/// The frame's codes 256 to 259 don't fit where a status has eight bits: they become 252 to 255.
int StatusOf(std::int32_t code) {
    if (code >= Common::ExitCommandLine && code <= Common::ExitUnknownException) return code - 4;
    return code > Common::ExitUnknownException || code < 0 ? 255 : code;
}

}  // namespace

int RunProgram(int argc, char** argv) {
    auto& streams = *SingletonWrapper<Streams::AppStreams>::accessObject();
    streams.errorStream = streams.debugStream = &std::cerr;
    streams.outputStream = &std::cout;
    streams.inputStream = &std::cin;
    FormatTool tool;
    const int status = StatusOf(tool.Run(argc, argv));
    std::cout.flush();
    return status == 0 && !std::cout ? 1 : status;  // what it should say isn't read in full
}

}  // namespace TarnFormat
