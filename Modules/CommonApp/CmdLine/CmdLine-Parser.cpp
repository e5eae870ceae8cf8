#include "Caught.h"
#include "CmdLine/CmdLine.h"
#include "Format.h"

namespace CmdLine {

namespace {

constexpr char captureSeparator = '\xFF';

}  // namespace

namespace Exceptions {

InvalidTokenException::InvalidTokenException(const std::string& token)
    : ParsingException(Common::Format("unrecognized expression <${1}>") % token), m_token(token) {}

ArgumentMissingException::ArgumentMissingException(const std::string& key)
    : ParsingException(Common::Format("invalid usage of key <${1}>: argument is missing.") % key), m_key(key) {}

BadArgumentException::BadArgumentException(const std::string& token, const std::string& key)
    : ParsingException(Common::Format("invalid usage of key <${1}>: '${2}' is unexpected.") % key % token),
      m_token(token),
      m_key(key) {}

KeyNotFoundException::KeyNotFoundException(const std::string& key)
    : ParsingException(Common::Format("mandatory key <${1}> was not specified.") % key), m_key(key) {}

UnexpectedException::UnexpectedException(const std::string& leftovers)
    : ParsingException(Common::Format("unrecognized arguments found: ${1}") % leftovers), m_leftovers(leftovers) {}

}  // namespace Exceptions

std::size_t AKey::MatchLimit(const TokenList& tokens) {
    std::size_t limit = 0;
    for (const auto& token : tokens)
        limit += token.size() + 1;
    return limit;
}

bool AKey::Extract(TokenList& tokens, Position& position) {
    auto first = tokens.begin();
    const bool isFound = ExtractFrom(tokens, first);
    if (isFound) position = first;
    return isFound;
}

bool AKey::ExtractFrom(TokenList& tokens, Position& position) const {
    for (auto token = position; token != tokens.end(); ++token) {
        std::string captures = *token;
        if (!WildcardMatch(GetName(), captures, captureSeparator)) continue;
        const auto behind = tokens.erase(token);
        position = behind;
        bool isFirst = true;
        for (std::size_t at = 0; at < captures.size();) {
            const auto end = std::min(captures.find(captureSeparator, at), captures.size());
            if (end > at) {
                const auto piece = tokens.insert(behind, captures.substr(at, end - at));
                if (std::exchange(isFirst, false)) position = piece;
            }
            at = end + 1;
        }
        return true;
    }
    return false;
}

void Key::ArgumentList::Load(TokenList& tokens, Position& position) {
    for (const auto& argument : *this)
        argument->Load(tokens, position);
}

void Key::Parse(TokenList& tokens) {
    const std::string reportedKey = tokens.empty() ? std::string() : tokens.front();
    const auto limit = MatchLimit(tokens);
    std::size_t matches = 0;
    for (auto position = tokens.begin(); matches < limit && ExtractFrom(tokens, position); ++matches) {
        LoadArguments(tokens, position, reportedKey);
        OnMatched(m_arguments);
    }
    if (matches == 0 && !m_optional) throw new Exceptions::KeyNotFoundException(GetName());
}

void Key::LoadArguments(TokenList& tokens, Position& position, const std::string& reportedKey) {
    try {
        m_arguments.Load(tokens, position);
    } catch (const Exceptions::ArgumentMissingException*) {
        const Common::Caught replaced;
        throw new Exceptions::ArgumentMissingException(reportedKey);
    } catch (const Exceptions::InvalidTokenException* invalid) {
        const Common::Caught replaced;
        throw new Exceptions::BadArgumentException(invalid->GetToken(), invalid->GetToken());
    }
}

void Parser::Parse(const char* line) {
    ParseAll(Tokenize(line ? line : ""));
}

void Parser::Parse(int argc, char** argv) {
    ParseAll(TokenList(argv, argv + argc));
}

void Parser::ParseAll(TokenList tokens) {
    Parse(tokens);
    if (m_strict && !tokens.empty()) throw new Exceptions::UnexpectedException(JoinTokens(tokens));
}

void Parser::Parse(TokenList& tokens) {
    const auto keys = m_keys;  // a handler may change the table
    for (const auto& key : keys) {
        if (tokens.empty()) return;
        key->Parse(tokens);
    }
}

void Parser::AddKey(const CountedPtr<IKey>& key, bool atFront) {
    for (auto& present : m_keys)
        if (*present == *key) {
            present = key;
            return;
        }
    m_keys.insert(atFront ? m_keys.begin() : m_keys.end(), key);
}

void Parser::Clear() {
    m_keys.clear();
}

}  // namespace CmdLine
