#include "CmdProcessor/CmdProcessor.h"

#include <algorithm>

#include "Format.h"
#include "Streams/AppStreams.h"

namespace CmdProcessor {

namespace {

std::vector<std::string> TextsOf(const XML::Node& node, const char* path) {
    std::vector<std::string> texts;
    for (const auto& [name, note] : node.FindAll(path))
        texts.push_back(note->Text());
    return texts;
}

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

ACommand::ACommand(const XML::Node& node) {
    m_description.headNote = TextsOf(node, "HeadNote");
    m_description.footNote = TextsOf(node, "FootNote");
    m_description.helpNote = TextsOf(node, "Help/Note");
    m_global.Load(node.FindChild("Global"));
    m_local.Load(node.FindChild("Local"));
    BindItems(node);
    if (auto help = node.GetOrEmpty("Help"); !help.empty()) m_description.helpNote.push_back(std::move(help));
}

void ACommand::BindItems(const XML::Node& node) {
    using enum Environment::Presence;
    const auto bind = [this]<typename T>(const char* name, T& member, Environment::Presence presence = Optional) {
        m_items.push_back(std::make_unique<Environment::BoundItem<T>>(name, &member, presence));
    };
    bind("description", m_description.description);
    bind("device_name", m_description.deviceName);
    bind("key", m_description.key);
    bind("name", m_description.name, Mandatory);
    bind("arguments", m_description.arguments);
    bind("hint", m_description.hint);
    bind("class", m_description.className);
    for (const auto& item : m_items)
        if (!item->Load(node)) throw new Environment::DataBinderException(*item);
}

void ACommand::Initialize(Environment::IContext* context) {
    m_context = context;
    if (!context) return;
    context->GetGlobal().Merge(m_global);
    context->GetLocal().Merge(m_local);
    for (const auto& item : m_items)
        if (!item->Bind(context->GetLocal())) throw new Environment::DataBinderException(*item);
}

int ACommand::Execute() {
    if (!m_description.className.empty())
        throw Common::Exception(Common::Format("${1} Command is not supported!") % GetName());
    return 0;
}

std::string ACommand::GetHelpText() const {
    std::string text;
    for (const auto& line : m_description.helpNote)
        text += line + "\n";
    return text;
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
    auto matchesLeft = MatchLimit(tokens);
    for (auto position = tokens.begin(); matchesLeft > 0 && ExtractFrom(tokens, position); --matchesLeft) {
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
    if (makeKey) m_parser.AddKey(MakeCounted<CmdLineKey>(command, queue), atFront);
}

void Processor::AddCommand(const CountedPtr<ICommand>& command, bool atFront, const std::string& id) {
    Register(command, true, atFront, &GetQueue(id));
}

void Processor::AddKey(const CountedPtr<CmdLine::IKey>& key, const XML::Node* profile, bool atFront) {
    m_parser.AddKey(key, atFront);
    const auto* description = profile ? profile->FindAttribute("*/Command", "key", key->GetName()) : nullptr;
    if (description) Register(MakeCounted<ACommand>(*description), false, false, nullptr);
}

void Processor::LoadProfile(const XML::Node& profile) {
    auto* queue = &GetQueue(profile.GetOrEmpty("id"));
    for (const auto& [path, node] : profile.FindAll("Command")) {
        CountedPtr<ICommand> command(CommandFactory::Instance().Create(node->GetOrEmpty("class"), node.Get()));
        if (!command) command = MakeCounted<ACommand>(*node);
        Register(command, true, false, queue);
    }
}

CountedPtr<ICommand> Processor::FindCommand(const std::string& name) const {
    const auto found = m_commands.find(name);
    return found == m_commands.end() ? nullptr : found->second;
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
        if (const auto help = command->GetHelpText(); !help.empty()) guide += "\n" + name + "\n" + help;
    return guide;
}

std::string Processor::GetHelpItem(const std::string& name) const {
    const auto command = FindCommand(name);
    if (!command) return Common::Format("No help item for ${1}\n") % name;
    return command->GetHelpText();
}

}  // namespace CmdProcessor
