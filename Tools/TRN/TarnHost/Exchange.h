// One command line and everything that came back from the plug-in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Console/Terminal.h"
#include "ITrellisPlugin.h"

namespace TarnHost {

struct Exchange {
    std::string line;  ///< as it was given
    std::int32_t exitCode = 0;
    std::string output;
    std::string error;
    std::string left;     ///< what no key took
    std::string warning;  ///< what the plug-in wrote to the error stream of the process-wide streams
};

/// The error as one sentence for a person: without the line end, and never empty for a failed line.
std::string ErrorSentence(const Exchange& exchange);

/// Receives what the plug-in sends on its own accord while a line runs.
class Receiver : public IHostOutput {
public:
    virtual ~Receiver() = default;
};

/// Passes everything on at once: messages and texts to standard output, each ended by a line end, errors to standard
/// error.
class PassingReceiver final : public Receiver {
public:
    explicit PassingReceiver(Console& console) : m_console(console) {}
    void OutputObject(std::string text) override;
    void Output(std::string text) override { OutputObject(std::move(text)); }
    void OutputError(std::string text) override;

private:
    Console& m_console;
};

/// Keeps everything until it is taken.
class KeepingReceiver final : public Receiver {
public:
    void OutputObject(std::string text) override { messages.push_back(std::move(text)); }
    void Output(std::string text) override { printed.push_back(std::move(text)); }
    void OutputError(std::string text) override { printedErrors.push_back(std::move(text)); }

    std::vector<std::string> messages;
    std::vector<std::string> printed;
    std::vector<std::string> printedErrors;
};

/// One JSON object without a line end. Bytes that are no UTF-8 become U+FFFD.
std::string RecordText(const Exchange& exchange, const KeepingReceiver& received);

}  // namespace TarnHost
