// One command line and everything that came back from the plug-in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace TarnSession {

struct Exchange {
    std::string line;  ///< as it was given
    std::int32_t exitCode = 0;
    std::string output;
    std::string error;
    std::string left;  ///< what no key took
    /// What went to the process-wide error stream while the line ran, one entry a line of text, and what was logged at
    /// error level meanwhile, each once; 100 of the latter at the most.
    std::vector<std::string> warnings;
    std::string captureTrouble{};  ///< why a failed line's capture was empty, in the radio's words
};

/// How one line is run.
struct LineOptions {
    bool plainOutput = false;  ///< text answers from the front-end variant
};

/// Takes what the plug-in sends on its own accord while a line runs. Thread: called on the plug-in's.
class ISink {
public:
    virtual ~ISink() = default;
    /// One whole JSON message of the front-end variant.
    virtual void Message(std::string json) = 0;
    virtual void Text(std::string text) = 0;
    virtual void Error(std::string text) = 0;
};

/// The error as one sentence for a person: without the line end, and never empty for a failed line. Behind an empty
/// capture stands the radio's reason.
std::string ErrorSentence(const Exchange& exchange);

}  // namespace TarnSession
