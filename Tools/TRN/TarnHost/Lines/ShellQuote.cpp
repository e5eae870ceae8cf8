#include "Lines/ShellQuote.h"

#include <string_view>

namespace TarnHost {

std::string CommandText(const std::vector<std::string>& arguments) {
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_./:=,+@%";
    std::string text = "tarn";
    for (const std::string& argument : arguments) {
        text += ' ';
        if (!argument.empty() && argument.find_first_not_of(plain) == std::string::npos) {
            text += argument;
            continue;
        }
        text += '\'';
        for (const char c : argument)
            text += c == '\'' ? std::string("'\\''") : std::string(1, c);
        text += '\'';
    }
    return text;
}

}  // namespace TarnHost
