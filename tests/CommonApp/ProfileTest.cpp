#include <gtest/gtest.h>

#include "Frame/Application.h"
#include "Support/Thrown.h"
#include "TestStreams.h"
#include "XmlEvents.h"

namespace {

using Support::ThrownText;

struct ProfiledTool : Common::Application {
    explicit ProfiledTool(const std::string& configuration = "<P/>")
        : Application("Tool", "1", "x 2023", configuration) {}
    using Application::LoadProfile;
    using Application::m_context;

    std::string Load(const std::string& profile) {
        std::istringstream stream(profile);
        return ThrownText([&] { LoadProfile(stream); });
    }
    /// Runs the line's commands of the queue "q".
    std::string RunLine(const std::string& line) {
        return ThrownText([&] {
            auto tokens = CmdLine::Tokenize(line);
            GetProcessor().GetParser().Parse(tokens);
            GetProcessor().Execute("q");
        });
    }
};

/// Answers "name: a=<a>, b=<b>" of its variables.
struct Telling : CmdProcessor::ACommand {
    using ACommand::ACommand;
    int Execute() override {
        told += GetName() + ": " + GetArgument("a") + ", " + GetArgument(1) + ", " + GetHint() + "; ";
        return 0;
    }
    static inline std::string told;
};

const std::string profile =
    "<Profile id='q'>"
    "<Global><Variable name='who' value='all'/><Variable name='$(who)2' value='$(who)!'/></Global>"
    "<Command name='tell' key='-tell' class='Telling' arguments='1' description='Tells' hint='of $(who)' Help='more'>"
    "<Local><Variable name='a' value='<$(all2)>'/></Local>"
    "<HeadNote>head</HeadNote><FootNote>foot</FootNote><Help><Note>one</Note><Note>two</Note></Help></Command>"
    "<Command name='none' key='-none' class='NoSuchClass'/><Command name='plain' key='-plain'/>"
    "<Command name='every' key='*'/>"
    "</Profile>";

}  // namespace

TEST(Profile, GivesVariablesAndCommandsInBothForms) {
    CmdProcessor::CommandFactory::Instance().Register("Telling",
                                                      [](const XML::Node* node) { return new Telling(*node); });
    EXPECT_EQ(ThrownText([] { CmdProcessor::CommandFactory::Instance().Register("Telling", nullptr); }),
              "Class Telling is registered twice");
    for (const auto& bytes : {profile, PackedXml(profile)}) {
        CapturedStreams captured;
        Telling::told.clear();
        ProfiledTool tool;
        EXPECT_EQ(tool.Load(bytes), "nothing thrown");
        EXPECT_EQ(tool.m_context.GetGlobal().GetOrEmpty("all2"), "$(who)!");
        EXPECT_EQ(tool.RunLine("-tell x -plain -tell $(who)"), "nothing thrown");
        EXPECT_EQ(Telling::told, "tell: <all!>, x, of all; tell: <all!>, all, of all; ");
        EXPECT_EQ(tool.RunLine("-none"), "none Command is not supported!");
        EXPECT_EQ(tool.RunLine("-xyz"), "nothing thrown");
        EXPECT_EQ(tool.RunLine("-tell"), "invalid usage of key <tell>: argument is missing.");
        const auto command = tool.GetProcessor().FindCommand("tell");
        command->PrintHeadNote();
        command->PrintFootNote();
        EXPECT_EQ(captured.output.str(), "headfoot\n");
        EXPECT_EQ(command->GetHelpText(), "one\ntwo\nmore\n");
        EXPECT_NE(tool.GetHelp().find("    tell           Tells\n"), std::string::npos);
        EXPECT_NE(tool.GetUserGuide().find("\ntell\none\ntwo\nmore\n"), std::string::npos);
    }
}

TEST(Profile, ThatIsDamagedSaysSo) {
    const std::pair<std::string, std::string> cases[] = {
        {"<P><Command name='x' arguments='-1'/></P>", "arguments is out of range"},
        {"<P><Command name='x' arguments='1 '/></P>", "arguments is out of range"},
        {"<P><Command key='-x'/></P>", "name is out of range"},
        {"<P><Global><Variable name='a' value='1'/></Global><Command name='$(b)$(name)'/></P>",
         "The references in $(name) have no end"},
        {"<P>", "Could not read profile"},
        {"", "Could not read profile"},
        {"XB02", "Could not read profile"},
        {PackedXml(profile).substr(0, 200), "Could not read profile"},
    };
    for (const auto& [text, failure] : cases)
        EXPECT_EQ(ProfiledTool().Load(text), failure) << text;
    for (const char* bad : {"", "<P", "no document"})
        EXPECT_EQ(ThrownText([&] { ProfiledTool{bad}; }), "Configuration is corrupted.");
}

TEST(Profile, GivenAtConstructionDescribesTheKeysOfTheTool) {
    ProfiledTool tool("<P><a><Command key='-k' name='kay' description='Does k'/></a></P>");
    EXPECT_EQ(tool.FindConfiguration("P/a/Command")->GetOrEmpty("name"), "kay");
    EXPECT_EQ(tool.FindConfiguration("P/b"), nullptr);
    tool.AddKey(CmdLine::MakeDataKey("-k"), false);
    tool.AddKey(CmdLine::MakeDataKey("-other"), false);
    EXPECT_NE(tool.GetHelp().find("\n\n    kay            Does k\n"), std::string::npos);
}
