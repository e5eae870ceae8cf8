// An exchange as one JSON object, for programs.
#pragma once

#include <string>
#include <vector>

#include "Exchange.h"

namespace TarnSession {

/// Keeps everything until it is taken. Thread: read between two lines.
class KeepingSink final : public ISink {
public:
    void Message(std::string json) override { messages.push_back(std::move(json)); }
    void Text(std::string text) override { printed.push_back(std::move(text)); }
    void Error(std::string text) override { printedErrors.push_back(std::move(text)); }

    std::vector<std::string> messages;
    std::vector<std::string> printed;
    std::vector<std::string> printedErrors;
};

/// One JSON object without a line end. Bytes that are no UTF-8 become U+FFFD.
std::string RecordText(const Exchange& exchange, const KeepingSink& received);

}  // namespace TarnSession
