#include "Exchange.h"

#include <nlohmann/json.hpp>

namespace TarnHost {

std::string ErrorSentence(const Exchange& exchange) {
    for (const std::string* text : {&exchange.error, &exchange.warning, &exchange.output}) {
        const auto last = text->find_last_not_of(" \t\r\n");
        if (last != std::string::npos) return text->substr(0, last + 1);
    }
    return "failed with exit code " + std::to_string(exchange.exitCode);
}

void PassingReceiver::OutputObject(std::string text) {
    if (!text.ends_with('\n')) text += '\n';
    m_console.out.Write(text);
    m_console.out.Flush();
}

void PassingReceiver::OutputError(std::string text) {
    while (text.ends_with('\n') || text.ends_with('\r'))
        text.pop_back();
    m_console.Say(text);
}

std::string RecordText(const Exchange& exchange, const KeepingReceiver& received) {
    using Json = nlohmann::ordered_json;
    const Json record = {
        {"line", exchange.line},       {"exitCode", exchange.exitCode},
        {"output", exchange.output},   {"error", exchange.error},
        {"left", exchange.left},       {"messages", received.messages},
        {"printed", received.printed}, {"printedErrors", received.printedErrors},
    };
    return record.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace TarnHost
