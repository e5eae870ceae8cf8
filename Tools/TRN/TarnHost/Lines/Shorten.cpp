#include "Lines/Shorten.h"

#include <cstddef>

namespace TarnHost {
namespace {

constexpr std::size_t longest = 800, mostGivenUp = 200;
constexpr const char* blanks = " \t\r\n";

std::size_t CountWords(const std::string& text, std::size_t start) {
    std::size_t count = 0;
    while ((start = text.find_first_not_of(blanks, start)) != std::string::npos) {
        start = text.find_first_of(blanks, start);
        ++count;
    }
    return count;
}

}  // namespace

std::string Shortened(const std::string& text) {
    if (text.size() <= longest) return text;
    const std::size_t blank = text.find_last_of(blanks, longest);
    const bool cutsWord = blank == std::string::npos || longest - blank > mostGivenUp;
    std::size_t end = cutsWord ? longest : blank;
    while (cutsWord && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80)
        --end;  // not within a character
    const std::size_t more = CountWords(text, cutsWord ? text.find_first_of(blanks, end) : end);
    return text.substr(0, end) + (cutsWord ? "..." : " ...") +
           (more > 0 ? " and " + std::to_string(more) + " more" : "");
}

}  // namespace TarnHost
