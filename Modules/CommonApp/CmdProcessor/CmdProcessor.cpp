#include "CmdProcessor/CmdProcessor.h"

#include <algorithm>

#include "Format.h"
#include "Streams/AppStreams.h"

namespace CmdProcessor {

namespace {

std::string JoinLines(const std::vector<std::string>& lines) {
    std::string joined;
    for (const auto& line : lines)
        joined += (joined.empty() ? "" : "\n") + line;
    return joined;
}

/// An innermost scope for as long as a command runs.
class Scope {
public:
    explicit Scope(Environment::IContext& context) : m_context(context) { m_context.Push(); }
    ~Scope() { m_context.Pop(); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    Environment::IContext& m_context;
};

}  // namespace

void ACommand::Initialize(Environment::IContext* context) {
    m_context = context;
    if (!context) return;
    context->GetGlobal().Merge(m_global);
    context->GetLocal().Merge(m_local);
}

int ACommand::Execute() {
    if (!m_description.className.empty())
        throw Common::Exception(Common::Format("${1} Command is not supported!") % GetName());
    return 0;
}

std::string ACommand::GetHelpText() const {
    return JoinLines(m_description.helpNote);
}

std::string ACommand::GetArgument(int index) const {
    return GetArgument(std::to_string(index));
}

std::string ACommand::GetArgument(const std::string& name) const {
    if (!m_context) return {};
    const auto& local = m_context->GetLocal();
    return local.Expanded(local.GetOrEmpty(name), true);
}

void ACommand::PrintHeadNote() {
    Streams::AppStreams::GetOutput() << JoinLines(m_description.headNote) << std::flush;
}

void ACommand::PrintFootNote() {
    Streams::AppStreams::GetOutput() << JoinLines(m_description.footNote) << std::endl;
}

void Processor::CmdLineKey::Parse(CmdLine::TokenList& tokens) {
    for (CmdLine::Position position; Extract(tokens, position);) {
        auto arguments = MakeCounted<Environment::Variables>();
        for (unsigned i = 1; i <= m_command->GetArgumentCount(); ++i) {
            if (position == tokens.end()) throw new CmdLine::Exceptions::ArgumentMissingException(m_command->GetName());
            arguments->Set(std::to_string(i), CmdLine::TakeToken(tokens, position));
        }
        m_queue->push_back({m_command, arguments});
    }
}

void Processor::Register(const CountedPtr<ICommand>& command, bool makeKey, bool atFront, Queue* queue) {
    m_commands[command->GetName()] = command;
    if (makeKey) AddKey(MakeCounted<CmdLineKey>(command, queue), atFront);
}

void Processor::AddCommand(const CountedPtr<ICommand>& command, bool atFront, const std::string& id) {
    Register(command, true, atFront, &GetQueue(id));
}

int Processor::Execute(const std::string& id) {
    if (!m_context) return -1;
    auto& queue = GetQueue(id);
    int result = 0;
    while (result == 0 && !queue.empty())
        result = ExecuteFirst(queue);
    return result;
}

int Processor::ExecuteFirst(Queue& queue) {
    const Invocation invocation = queue.front();
    queue.pop_front();
    const Scope scope(*m_context);
    auto& local = m_context->GetLocal();
    if (invocation.arguments) local.Merge(*invocation.arguments);
    invocation.command->Initialize(m_context);
    if (invocation.arguments) {
        local.Merge(*invocation.arguments);
        local.CopyTo(m_context->GetGlobal());
    }
    return invocation.command->Execute();
}

std::string Processor::GetHelpPage() const {
    std::size_t width = 14;
    for (const auto& [name, command] : m_commands)
        if (!command->GetDescription().empty()) width = std::max(width, name.size());
    const auto line = [width](const std::string& name, const std::string& description) {
        return "    " + Streams::PaddedRight(name, width) + " " + description + "\n";
    };
    std::string page = "EEPROM Version $(Application.Version)\n\nUsage:\n    $(Application.Filename) [options]\n\n";
    page += "Available options:\n";
    page += line("-?, -h", "Shows this page");
    page += line("-help <OPTION>", "Shows detailed help on specified option") + "\n";
    for (const auto& [name, command] : m_commands)
        if (!command->GetDescription().empty()) page += line(name, command->GetDescription());
    return page;
}

std::string Processor::GetUserGuide() const {
    std::string guide = GetHelpPage();
    for (const auto& [name, command] : m_commands)
        if (const auto help = command->GetHelpText(); !help.empty()) guide += "\n" + name + "\n" + help + "\n";
    return guide;
}

std::string Processor::GetHelpItem(const std::string& name) const {
    const auto found = m_commands.find(name);
    if (found == m_commands.end()) return Common::Format("No help item for ${1}\n") % name;
    return found->second->GetHelpText();
}

}  // namespace CmdProcessor
