#include "Lines/KeyLine.h"

namespace TarnHost {
namespace {

constexpr std::string_view separators = " \t\n\r";

}  // namespace

std::optional<std::string> QuoteToken(std::string_view text) {
    if (text.empty() || text.find('"') != std::string_view::npos) return std::nullopt;
    return '"' + std::string(text) + '"';
}

std::optional<std::string> QuotePath(const std::string& path) {
    // quotes don't keep a token such as "-band" from matching a key
    return QuoteToken(path.starts_with('-') ? "./" + path : path);
}

std::string_view StripComment(std::string_view line) {
    bool isQuoted = false;
    bool isTokenStart = true;
    for (std::size_t k = 0; k < line.size(); ++k) {
        const char c = line[k];
        if (c == '#' && isTokenStart) {
            line = line.substr(0, k);
            break;
        }
        if (c == '"') isQuoted = !isQuoted;
        isTokenStart = !isQuoted && separators.find(c) != std::string_view::npos;
    }
    const auto first = line.find_first_not_of(separators);
    if (first == std::string_view::npos) return {};
    line.remove_prefix(first);
    // an open quote takes the blanks up to the end of the line
    return isQuoted ? line : line.substr(0, line.find_last_not_of(separators) + 1);
}

}  // namespace TarnHost
