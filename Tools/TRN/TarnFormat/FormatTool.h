// tarn-format: fills templates, packs XML profiles and runs their commands, on the application frame alone.
#pragma once

#include <string>
#include <vector>

#include "Frame/Application.h"

namespace TarnFormat {

class FormatTool : public Common::Application {
public:
    FormatTool();

    /// Reads profiles, then variables, so that all that follows on the line has them; refuses what nobody takes.
    void ParseCommandLine(CmdLine::TokenList& tokens) override;
    /// Executes the queues of the profiles, then the tool's own, up to the first result that isn't 0.
    std::int32_t Execute() override;

private:
    void ParseSettings(CmdLine::TokenList& tokens);
    void ReadProfile(std::string path);
    void SetVariable(std::string value);
    void QueueKeyless(const XML::Node& profile);

    std::string m_variable;  // name for the value that follows
    std::vector<std::string> m_queues;
};

/// The whole program, on the standard streams. @return its exit status
int RunProgram(int argc, char** argv);

}  // namespace TarnFormat
