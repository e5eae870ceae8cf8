#include "Xml/Parser.h"

#include <array>
#include <cstring>
#include <istream>
#include <utility>

#include "Caught.h"

namespace XML {

namespace {

constexpr std::string_view whiteSpace = "\n\r\t ";

constexpr std::array<bool, 256> TableOf(std::string_view characters) {
    std::array<bool, 256> table{};
    for (const char c : characters)
        table[static_cast<unsigned char>(c)] = true;
    return table;
}

constexpr auto isWhite = TableOf(whiteSpace);
constexpr auto isOfName = TableOf("0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ-+~_.");

constexpr int endOfInput = -1;

}  // namespace

/// A window on the stream. It holds at least what stands between the beginning of a token and the place of reading, so
/// that a token is handed on where it stands, with a NUL byte in the place of the character behind it.
class Parser::Input {
public:
    explicit Input(std::istream& stream) : m_stream(stream), m_buffer(firstSize + 1) {}

    /// The next character, which stays; endOfInput at the end.
    int Peek() { return m_at < m_end || Fill() ? static_cast<unsigned char>(m_buffer[m_at]) : endOfInput; }
    void Take() { ++m_at; }
    bool TakeIf(char c) {
        if (Peek() != static_cast<unsigned char>(c)) return false;
        Take();
        return true;
    }
    void BeginToken() { m_token = m_at; }
    std::size_t TokenLength() const { return m_at - m_token; }
    /// Text of the token from `from` on, up to `to`: the character there becomes a NUL byte, and is answered.
    char EndAt(std::size_t to) { return std::exchange(m_buffer[m_token + to], '\0'); }
    void Restore(std::size_t at, char c) { m_buffer[m_token + at] = c; }
    const char* Token(std::size_t from = 0) const { return m_buffer.data() + m_token + from; }

    void TakeAll(const std::array<bool, 256>& characters) {
        do
            while (characters[static_cast<unsigned char>(m_buffer[m_at])] && m_at < m_end)
                ++m_at;
        while (m_at == m_end && Fill());
    }
    void SkipWhiteSpace() {
        do {
            while (isWhite[static_cast<unsigned char>(m_buffer[m_at])] && m_at < m_end)
                ++m_at;
            BeginToken();  // so that none of it is kept
        } while (m_at == m_end && Fill());
    }
    /// Moves to the next `c`, which stays; false at the end of the stream.
    bool FindAhead(char c) {
        do {
            if (const auto* found = std::memchr(m_buffer.data() + m_at, c, m_end - m_at)) {
                m_at = static_cast<std::size_t>(static_cast<const char*>(found) - m_buffer.data());
                return true;
            }
            m_at = m_end;
        } while (Fill());
        return false;
    }
    /// Drops all up to the next `c` and that too.
    bool SkipThrough(char c) {
        for (;; Take()) {
            BeginToken();
            const int next = Peek();
            if (next == endOfInput) return false;
            if (next == static_cast<unsigned char>(c)) return Take(), true;
        }
    }
    bool IsBroken() const { return m_isBroken; }

private:
    static constexpr std::size_t firstSize = 256 * 1024;

    /// More of the stream, behind what the token still needs.
    bool Fill() {
        if (m_token > 0) {
            std::memmove(m_buffer.data(), m_buffer.data() + m_token, m_end - m_token);
            m_at -= m_token;
            m_end -= std::exchange(m_token, 0);
        }
        const auto capacity = m_buffer.size() - 1;
        if (m_end == capacity) {
            if (capacity >= mostTokenBytes) return false;
            m_buffer.resize(2 * capacity + 1);
        }
        std::streamsize got = 0;
        try {
            got = m_stream.rdbuf()->sgetn(m_buffer.data() + m_end,
                                          static_cast<std::streamsize>(m_buffer.size() - 1 - m_end));
        } catch (...) {
            const Common::Caught dropped;
            m_isBroken = true;
        }
        m_end += static_cast<std::size_t>(got);
        return got > 0;
    }

    std::istream& m_stream;
    std::vector<char> m_buffer;  // with room for a NUL byte behind the end
    std::size_t m_token = 0;
    std::size_t m_at = 0;
    std::size_t m_end = 0;
    bool m_isBroken = false;
};

bool Parser::Parse(std::istream& stream) {
    m_listener->BeginDocument();
    m_names.clear();
    m_open.clear();
    bool good = !stream.fail();
    if (stream.good()) {
        Input input(stream);
        good = ParseBody(input) && m_open.empty();
        if (input.IsBroken()) {
            good = false;
            stream.setstate(std::ios_base::badbit);
        }
        stream.setstate(good ? std::ios_base::eofbit : std::ios_base::failbit);
    }
    if (stream.bad()) m_listener->Abort();
    if (good) m_listener->EndDocument();
    return good;
}

bool Parser::ParseBody(Input& input) {
    for (;;) {
        input.SkipWhiteSpace();
        const int next = input.Peek();
        if (next == endOfInput) return true;
        if (!(next == '<' ? ParseTag(input) : ParseText(input))) return false;
    }
}

bool Parser::ParseText(Input& input) {
    input.BeginToken();
    if (!input.FindAhead('<')) return false;
    auto length = input.TokenLength();
    while (isWhite[static_cast<unsigned char>(input.Token()[length - 1])])
        --length;
    if (std::memchr(input.Token(), '&', length)) {
        m_decoded.assign(input.Token(), length);
        DecodeEntities(m_decoded);
        if (!m_decoded.empty()) m_listener->Text(m_decoded.c_str());
        return true;
    }
    const char behind = input.EndAt(length);
    m_listener->Text(input.Token());
    input.Restore(length, behind);
    return true;
}

bool Parser::ParseTag(Input& input) {
    input.Take();
    switch (input.Peek()) {
        case '!':
            input.Take();
            return ParseDeclaration(input);
        case '?':
            return input.SkipThrough('>');
        case '/':
            input.Take();
            return ParseEndTag(input);
        default:
            return ParseStartTag(input);
    }
}

bool Parser::ParseDeclaration(Input& input) {
    if (!input.TakeIf('-')) return input.SkipThrough('>');
    input.TakeIf('-');
    for (int dashes = 0;; input.Take()) {
        input.BeginToken();
        const int next = input.Peek();
        if (next == endOfInput) return false;
        if (next == '>' && dashes >= 2) return input.Take(), true;
        dashes = next == '-' ? std::min(dashes + 1, 2) : 0;
    }
}

std::string_view Parser::OpenName() const {
    return std::string_view(m_names).substr(m_open.back());
}

bool Parser::PopName() {
    m_names.resize(m_open.back());
    m_open.pop_back();
    m_listener->CloseTag();
    return true;
}

bool Parser::ParseEndTag(Input& input) {
    input.BeginToken();
    input.TakeAll(isOfName);
    if (m_open.empty() || OpenName() != std::string_view(input.Token(), input.TokenLength())) return false;
    PopName();
    return input.SkipThrough('>');
}

bool Parser::ParseStartTag(Input& input) {
    input.BeginToken();
    input.TakeAll(isOfName);
    const auto length = input.TokenLength();
    if (length == 0) return false;
    m_open.push_back(m_names.size());
    m_names.append(input.Token(), length);
    const char behind = input.EndAt(length);
    m_listener->OpenTag(input.Token());
    input.Restore(length, behind);
    return ParseAttributes(input);
}

bool Parser::ParseAttributes(Input& input) {
    for (;;) {
        input.SkipWhiteSpace();
        if (input.TakeIf('>')) return true;
        if (input.TakeIf('/')) return input.TakeIf('>') && PopName();
        if (!ParseAttribute(input)) return false;
    }
}

bool Parser::ParseAttribute(Input& input) {
    input.BeginToken();
    input.TakeAll(isOfName);
    const auto length = input.TokenLength();
    input.TakeAll(isWhite);
    if (length == 0 || !input.TakeIf('=')) return false;
    input.TakeAll(isWhite);
    const int quote = input.Peek();
    const bool isQuoted = quote == '"' || quote == '\'';
    if (isQuoted) input.Take();
    const auto from = input.TokenLength();
    if (isQuoted && !input.FindAhead(static_cast<char>(quote))) return false;
    const auto to = input.TokenLength();
    input.EndAt(length);
    if (!isQuoted) {
        m_listener->Attribute(input.Token(), "");
        return true;
    }
    input.EndAt(to);
    input.Take();
    const char* value = input.Token(from);
    if (std::memchr(value, '&', to - from)) {
        m_decoded.assign(value, to - from);
        DecodeEntities(m_decoded);
        value = m_decoded.c_str();
    }
    m_listener->Attribute(input.Token(), value);
    return true;
}

namespace {

void ReplaceAll(std::string& text, std::string_view what, char by) {
    auto at = text.find(what);
    if (at == std::string::npos) return;
    std::string result;
    std::size_t from = 0;
    for (; at != std::string::npos; at = text.find(what, from)) {
        result.append(text, from, at - from);
        result += by;
        from = at + what.size();
    }
    result.append(text, from);
    text = std::move(result);
}

int DigitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : 16;
}

char CharacterOf(std::string_view digits) {
    const bool isHexadecimal = digits.starts_with('x') || digits.starts_with('X');
    if (isHexadecimal) digits.remove_prefix(1);
    const int base = isHexadecimal ? 16 : 10;
    unsigned code = 0;
    for (const char c : digits) {
        if (DigitOf(c) >= base) break;
        code = code * static_cast<unsigned>(base) + static_cast<unsigned>(DigitOf(c));
    }
    return static_cast<char>(code & 0xFF);
}

void DecodeNumbers(std::string& text) {
    std::string result;
    std::size_t from = 0;
    for (;;) {
        const auto at = text.find("&#", from);
        const auto end = at == std::string::npos ? at : text.find(';', at);
        if (end == std::string::npos) break;
        result.append(text, from, at - from);
        result += CharacterOf(std::string_view(text).substr(at + 2, end - at - 2));
        from = end + 1;
    }
    if (from == 0) return;
    result.append(text, from);
    text = std::move(result);
}

}  // namespace

void DecodeEntities(std::string& text) {
    static constexpr std::pair<std::string_view, char> entities[] = {
        {"&quot;", '"'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&nl;", '\n'}, {"&amp;", '&'}};
    for (const auto& [entity, character] : entities)
        ReplaceAll(text, entity, character);
    DecodeNumbers(text);
}

}  // namespace XML
