#include "Record.h"

#include <nlohmann/json.hpp>

namespace TarnSession {

std::string ErrorSentence(const Exchange& exchange) {
    const std::string warning = exchange.warnings.empty() ? std::string() : exchange.warnings.front();
    for (const std::string* text : {&exchange.error, &warning, &exchange.output}) {
        const auto last = text->find_last_not_of(" \t\r\n");
        if (last == std::string::npos) continue;
        const std::string sentence = text->substr(0, last + 1);
        return exchange.captureTrouble.empty() ? sentence : sentence + " The radio: " + exchange.captureTrouble;
    }
    return "failed with exit code " + std::to_string(exchange.exitCode);
}

std::string RecordText(const Exchange& exchange, const KeepingSink& received) {
    using Json = nlohmann::ordered_json;
    Json record = {
        {"line", exchange.line},       {"exitCode", exchange.exitCode},
        {"output", exchange.output},   {"error", exchange.error},
        {"left", exchange.left},       {"messages", received.messages},
        {"printed", received.printed}, {"printedErrors", received.printedErrors},
    };
    if (!exchange.warnings.empty()) record["warnings"] = exchange.warnings;
    return record.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace TarnSession
