#include "Commands.h"

#include <functional>

#include "Format.h"
#include "Frame/Application.h"
#include "OSAL/Paths.h"
#include "Packing.h"
#include "Streams/AppStreams.h"

namespace TarnFormat {

namespace {

using CmdProcessor::ACommand;
using CmdProcessor::CommandDescription;
using CmdProcessor::ICommand;
using Streams::AppStreams;

/// A command whose work is a function.
class Command : public ACommand {
public:
    using Work = std::function<void(Command&)>;

    template <typename Source>
    Command(Source&& source, Work work) : ACommand(std::forward<Source>(source)), m_work(std::move(work)) {}

    int Execute() override {
        m_work(*this);
        return 0;
    }

private:
    Work m_work;
};

void Report(const char* text, const std::string& target, const std::string& source) {
    AppStreams::GetOutput() << (Common::Format(text) % OSAL::FileNameOf(target) % OSAL::FileNameOf(source))
                            << std::endl;
}

void PackFile(const std::string& source, const std::string& target) {
    Pack(source, target);
    Report("File ${1} packed from ${2}", target, source);
}

void UnpackFile(const std::string& source, const std::string& target) {
    Unpack(source, target);
    Report("File ${1} unpacked from ${2}", target, source);
}

/// A variable that a command of a profile must have.
std::string Needed(const Command& command, const std::string& name) {
    auto value = command.GetArgument(name);
    if (value.empty())
        throw new Common::Exception(Common::Format("Command ${1} has no variable ${2}") % command.GetName() % name);
    return value;
}

void Print(Command& command) {
    command.PrintHeadNote();
    AppStreams::GetOutput() << command.GetArgument("Text");
    command.PrintFootNote();
}

void Set(Command& command) {
    auto& context = *command.GetContext();
    context.GetGlobal().Set(Needed(command, "Variable"), context.GetLocal().Evaluate(command.GetArgument("Value")));
}

void Fill(Command& command) {
    const auto source = Needed(command, "Template"), target = Needed(command, "Target");
    Common::Application::FillTemplate(source, target, command.GetContext()->GetLocal());
    Report("File ${1} created using template ${2}", target, source);
}

}  // namespace

std::vector<CountedPtr<ICommand>> OwnCommands() {
    CommandDescription pack{.helpNote = {"-pack SOURCE TARGET", "",
                                         "Writes the XML document SOURCE in its binary form to TARGET. Comments and",
                                         "declarations are left out."},
                            .key = "-pack",
                            .description = "Writes the binary form of an XML document",
                            .name = "-pack",
                            .arguments = 2};
    CommandDescription unpack{
        .helpNote = {"-unpack SOURCE TARGET", "", "Writes the XML text of the binary document SOURCE to TARGET."},
        .key = "-unpack",
        .description = "Writes the XML text of a binary document",
        .name = "-unpack",
        .arguments = 2};
    const auto onFiles = [](auto work) {
        return [work](Command& command) { work(command.GetArgument(1), command.GetArgument(2)); };
    };
    return {MakeCounted<Command>(std::move(pack), onFiles(&PackFile)),
            MakeCounted<Command>(std::move(unpack), onFiles(&UnpackFile))};
}

std::vector<CountedPtr<ICommand>> OptionNotes() {
    const auto note = [](const char* name, const char* description, std::vector<std::string> help) {
        return MakeCounted<ACommand>(
            CommandDescription{.helpNote = std::move(help), .description = description, .name = name});
    };
    return {
        note("/format", "Fills a template",
             {"/format TEMPLATE TARGET", "",
              "Writes TARGET: the text of TEMPLATE with each reference to a variable, a dollar sign and its name in",
              "parentheses, replaced by the variable's value; what nobody has set vanishes. Without TARGET the",
              "template itself is rewritten."}),
        note("-profile", "Reads variables and commands from a profile",
             {"-profile FILE", "",
              "Reads an XML profile, text or binary form. Its commands can be used as options on the same line;",
              "those without a key run at once."}),
        note("-set", "Sets a variable",
             {"-set NAME VALUE", "", "Sets a variable for templates and commands, over that of a profile."})};
}

void RegisterClasses() {
    const auto add = [](const char* name, Command::Work work) {
        CmdProcessor::CommandFactory::Instance().Register(
            name, [work = std::move(work)](const XML::Node* node) { return new Command(*node, work); });
    };
    const auto onFiles = [](auto work) {
        return [work](Command& command) { work(Needed(command, "Source"), Needed(command, "Target")); };
    };
    add("Print", &Print);
    add("Set", &Set);
    add("Format", &Fill);
    add("Pack", onFiles(&PackFile));
    add("Unpack", onFiles(&UnpackFile));
}

}  // namespace TarnFormat
