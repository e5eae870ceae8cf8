#include "CmdLine/CmdLine.h"

namespace CmdLine {

namespace {

constexpr std::string_view separators = " \t\n";

bool IsSeparator(char c) {
    return separators.find(c) != std::string_view::npos;
}

/// Cuts the first token, quotes taken off, from the front of `line`, which begins with none of the separators.
std::string CutToken(std::string_view& line) {
    std::string token;
    bool quoted = false;
    std::size_t at = 0;
    for (; at < line.size() && (quoted || !IsSeparator(line[at])); ++at) {
        if (line[at] == '"')
            quoted = !quoted;
        else
            token += line[at];
    }
    line.remove_prefix(at);
    return token;
}

}  // namespace

TokenList Tokenize(std::string_view line) {
    TokenList tokens;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(separators), line.size()));
        if (line.empty()) return tokens;
        if (auto token = CutToken(line); !token.empty()) tokens.push_back(std::move(token));
    }
}

std::string JoinTokens(const TokenList& tokens) {
    std::string joined;
    for (const auto& token : tokens) {
        if (token.empty()) continue;
        if (!joined.empty()) joined += ' ';
        joined += Tokenize(token).size() > 1 ? '"' + token + '"' : token;
    }
    return joined;
}

std::string TakeToken(TokenList& tokens, Position& position) {
    if (position == tokens.end()) return {};
    std::string token = std::move(*position);
    position = tokens.erase(position);
    return token;
}

}  // namespace CmdLine
