#include "PlainText.h"

#include <cstdint>

namespace TarnMeasure {
namespace {

struct Character {
    std::uint32_t code = 0;
    std::size_t bytes = 1;  ///< of its UTF-8
    bool isValid = false;
};

Character FirstCharacter(std::string_view text) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};
    const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < bytes) return {};
    std::uint32_t code = lead & (0x7FU >> bytes);
    for (std::size_t k = 1; k < bytes; ++k) {
        if ((byte(k) & 0xC0U) != 0x80) return {};
        code = code << 6U | (byte(k) & 0x3FU);
    }
    static constexpr std::uint32_t shortest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < shortest[bytes] || code > 0x10FFFF || isSurrogate) return {};
    return {code, bytes, true};
}

bool IsHarmful(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029 || code == 0x200E ||
           code == 0x200F || (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

std::string Filtered(std::string_view text, std::string_view kept) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        const bool isKept = kept.find(text[0]) != std::string_view::npos;
        if (isKept || (character.isValid && !IsHarmful(character.code)))
            result += text.substr(0, character.bytes);
        else
            result += '?';
        text.remove_prefix(character.bytes);
    }
    return result;
}

}  // namespace

std::string Printable(std::string_view text) {
    return Filtered(text, "");
}

std::string PrintableLines(std::string_view text) {
    return Filtered(text, "\n\t");
}

std::string Listed(std::string_view choices) {
    std::string text;
    for (const char c : choices)
        text += c == '|' ? ", " : std::string(1, c);
    return text;
}

}  // namespace TarnMeasure
