// The integer expressions of `NamedStorage::Evaluate`. Works on the text itself: each step puts the decimal result of
// one operation in that operation's place.
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "NamedStorage.h"

namespace {

constexpr std::string_view operandCharacters = "-0123456789abcdefABCDEFxX";
constexpr std::array<std::string_view, 7> operatorGroups = {"%", "*/", "!", "&", "|^", "+", "><="};

std::optional<std::int32_t> NumberOf(std::string_view text) {
    bool negative = false;
    for (; text.starts_with('-'); text.remove_prefix(1))
        negative = !negative;
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    std::uint32_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return static_cast<std::int32_t>(negative ? 0 - magnitude : magnitude);
}

std::optional<std::int64_t> Compute(std::int64_t left, char operation, std::int64_t right) {
    switch (operation) {
        case '%':
            return right == 0 ? std::nullopt : std::optional(left % right);
        case '/':
            return right == 0 ? std::nullopt : std::optional(left / right);
        case '*':
            return left * right;
        case '!':
            return right == 0;
        case '&':
            return left & right;
        case '|':
            return left | right;
        case '^':
            return left ^ right;
        case '+':
            return left + right;
        case '>':
            return left > right;
        case '<':
            return left < right;
        case '=':
            return left == right;
        default:
            return std::nullopt;
    }
}

/// Blanks go; a subtraction becomes the addition of a negative number.
std::string Prepared(const std::string& text) {
    std::string prepared;
    for (const char c : text) {
        if (c == ' ' || c == '\n' || c == '\t' || c == '\r') continue;
        if (c == '-' && !prepared.empty() && prepared.back() != '+') prepared += '+';
        prepared += c;
    }
    return prepared;
}

/// Puts the result of the operation at `at` in its place.
bool ReduceOne(std::string& text, std::size_t at) {
    const char operation = text[at];
    const auto leftEnd = at == 0 ? std::string::npos : text.find_last_not_of(operandCharacters, at - 1);
    const auto first = leftEnd == std::string::npos ? 0 : leftEnd + 1;
    const auto last = std::min(text.find_first_not_of(operandCharacters, at + 1), text.size());
    // "!" has no left operand, and a "+" without one is a sign.
    const bool needsLeft = operation != '!' && !(operation == '+' && first == at);
    if (operation == '!' && first != at) return false;
    const auto left = needsLeft ? NumberOf(std::string_view(text).substr(first, at - first)) : 0;
    const auto right = NumberOf(std::string_view(text).substr(at + 1, last - at - 1));
    if (!left || !right) return false;
    const auto result = Compute(*left, operation, *right);
    if (!result) return false;
    text.replace(first, last - first, std::to_string(static_cast<std::int32_t>(*result)));
    return true;
}

/// An expression without parentheses.
std::optional<std::int32_t> Reduced(std::string text) {
    for (const auto operators : operatorGroups)
        for (auto at = text.find_first_of(operators); at != std::string::npos; at = text.find_first_of(operators))
            if (!ReduceOne(text, at)) return std::nullopt;
    return NumberOf(text);
}

}  // namespace

std::string NamedStorage::Evaluate(const std::string& text) const {
    auto expression = Prepared(Expanded(text, true));
    for (auto close = expression.find(')'); close != std::string::npos; close = expression.find(')')) {
        const auto open = expression.rfind('(', close);
        if (open == std::string::npos) return text;
        const auto inside = Reduced(expression.substr(open + 1, close - open - 1));
        if (!inside) return text;
        expression.replace(open, close + 1 - open, std::to_string(*inside));
    }
    const auto result = Reduced(expression);
    return result ? std::to_string(*result) : text;
}
