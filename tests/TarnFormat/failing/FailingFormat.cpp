// The tool with a class of commands for each kind of failure.
#include <functional>

#include "Exceptions.h"
#include "FormatTool.h"

namespace {

void Add(const char* name, std::function<int()> fail) {
    struct Failing : CmdProcessor::ACommand {
        Failing(const XML::Node& node, std::function<int()> action) : ACommand(node), m_action(std::move(action)) {}
        int Execute() override { return m_action(); }
        std::function<int()> m_action;
    };
    CmdProcessor::CommandFactory::Instance().Register(
        name, [fail](const XML::Node* node) { return new Failing(*node, fail); });
}

}  // namespace

int main(int argc, char** argv) {
    Add("Result", [] { return 7; });
    Add("Level", []() -> int { throw Common::ErrorLevelException("done", 17); });
    Add("Code", []() -> int { throw new CSvErrorCodeException("open", 2, "f.cpp", 5, "g"); });
    Add("Located", []() -> int { throw CSvMsgException("located", "f.cpp", 9, "g"); });
    Add("Driver", []() -> int { throw new CSvDriverMsgException("driver", -4, "d.cpp", 1, "g"); });
    Add("Legacy", []() -> int { throw CSvLegacyMsgException("legacy", 1, "l.cpp", 1, "g"); });
    Add("Number", []() -> int { throw 42; });
    return TarnFormat::RunProgram(argc, argv);
}
