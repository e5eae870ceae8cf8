#include <vector>

#include "CmdLine/CmdLine.h"

namespace CmdLine {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsHexDigit(char c) {
    return IsDigit(c) || (Lower(c) >= 'a' && Lower(c) <= 'f');
}

bool IsWhite(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// Walks pattern and text together; a "*" first takes nothing, and one character more each time that what follows
/// doesn't fit. Going back to the last "*" is enough: what an earlier one took already fits.
class Matcher {
public:
    Matcher(std::string_view pattern, std::string_view text)
        : m_pattern(pattern), m_text(text), m_captured(text.size()) {}

    bool Match() {
        while (m_t < m_text.size()) {
            if (m_p < m_pattern.size() && m_pattern[m_p] == '*') {
                m_starPattern = ++m_p;
                m_starText = m_t;
            } else if (!Step() && !GoBack()) {
                return false;
            }
        }
        while (m_p < m_pattern.size() && m_pattern[m_p] == '*')
            ++m_p;
        return m_p == m_pattern.size();
    }

    std::string Captures(char separator) const {
        std::string captures;
        bool closed = false;
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            if (!m_captured[i]) {
                closed = true;
                continue;
            }
            if (closed && !captures.empty()) captures += separator;
            closed = false;
            captures += m_text[i];
        }
        return captures;
    }

private:
    /// Matches one character (for "#" a run) against one element of the pattern and moves behind both.
    bool Step() {
        if (m_p == m_pattern.size()) return false;
        const char c = m_text[m_t];
        const char p = m_pattern[m_p];
        bool fits = false;
        switch (p) {
            case '?':
                fits = true;
                break;
            case '&':
                fits = IsHexDigit(c);
                break;
            case ' ':
                fits = IsWhite(c);
                break;
            case '#':
                return TakeDigits();
            default:
                return StepLiteral(c);
        }
        if (!fits) return false;
        m_captured[m_t++] = c != p;
        ++m_p;
        return true;
    }

    bool StepLiteral(char c) {
        const std::size_t at = m_pattern[m_p] == '\\' && m_p + 1 < m_pattern.size() ? m_p + 1 : m_p;
        if (Lower(m_pattern[at]) != Lower(c)) return false;
        m_captured[m_t++] = false;
        m_p = at + 1;
        return true;
    }

    bool TakeDigits() {
        const std::size_t start = m_t;
        while (m_t < m_text.size() && IsDigit(m_text[m_t]))
            m_captured[m_t++] = true;
        if (m_t > start) ++m_p;
        return m_t > start;
    }

    bool GoBack() {
        if (m_starPattern == 0) return false;
        m_captured[m_starText] = true;
        m_t = ++m_starText;
        m_p = m_starPattern;
        return true;
    }

    std::string_view m_pattern;
    std::string_view m_text;
    std::vector<bool> m_captured;
    std::size_t m_p = 0;
    std::size_t m_t = 0;
    std::size_t m_starPattern = 0;  // behind the last "*", 0 while there was none
    std::size_t m_starText = 0;     // first character that it hasn't taken
};

}  // namespace

bool WildcardMatch(std::string_view pattern, std::string& text, char separator) {
    Matcher matcher(pattern, text);
    if (!matcher.Match()) return false;
    text = matcher.Captures(separator);
    return true;
}

}  // namespace CmdLine
