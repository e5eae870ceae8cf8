#include "Console/TextWidth.h"

#include <algorithm>
#include <utility>

namespace TarnHost {
namespace {

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// Index behind the character that starts at `start`.
std::size_t CharacterEnd(std::string_view text, std::size_t start) {
    const auto lead = static_cast<unsigned char>(text[start]);
    const std::size_t longest = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    std::size_t end = start + 1;
    while (end < text.size() && end - start < longest && IsContinuation(text[end]))
        ++end;
    return end;
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t k = 0; k < text.size(); k = CharacterEnd(text, k))
        ++width;
    return width;
}

std::string LeadingCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    while (end < text.size() && count-- > 0)
        end = CharacterEnd(text, end);
    return std::string(text.substr(0, end));
}

bool ComesBefore(std::string_view a, std::string_view b) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto takeNumber = [&](std::string_view& text) {
        const auto end = static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
        std::string_view number = text.substr(0, end);
        text.remove_prefix(end);
        number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
        return std::pair(number.size(), number);
    };
    const auto whole = std::pair(a, b);
    while (!a.empty() && !b.empty()) {
        if (isDigit(a.front()) && isDigit(b.front())) {
            const auto numberA = takeNumber(a);
            const auto numberB = takeNumber(b);
            if (numberA != numberB) return numberA < numberB;
        } else if (a.front() != b.front()) {
            return static_cast<unsigned char>(a.front()) < static_cast<unsigned char>(b.front());
        } else {
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
    return a.size() != b.size() ? a.size() < b.size() : whole.first < whole.second;
}

}  // namespace TarnHost
