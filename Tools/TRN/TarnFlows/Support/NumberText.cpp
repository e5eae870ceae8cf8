#include "Support/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace {

constexpr std::array<double, 11> PowersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

/// Six digits of a magnitude in [1e-4, 1e5), without the library's exact conversion. Scaling by a power of ten costs a
/// relative error of 2^-53, far below `Doubtful`; a value that lies closer to a rounding tie than that is left alone.
/// @return the end of the text, or null when the exact conversion must decide
char* ShortText(char* to, double magnitude) {
    constexpr double Doubtful = 1e-6;
    int decimals = 1;  // digits behind the point that make six in all
    while (decimals < 10 && magnitude * PowersOfTen[decimals] < 1e5)
        ++decimals;
    const double scaled = magnitude * PowersOfTen[decimals];
    auto digits = static_cast<std::uint32_t>(scaled);
    const double rest = scaled - digits;
    if (std::abs(rest - 0.5) < Doubtful || scaled < 1e5 + 1.0 || scaled > 1e6 - 1.0) return nullptr;
    if (rest > 0.5) ++digits;
    while (decimals > 0 && digits % 10 == 0) {
        digits /= 10;
        --decimals;
    }
    std::array<char, 12> text{};
    std::size_t at = text.size();
    int written = 0;
    while (digits != 0 || written <= decimals) {
        if (written == decimals && decimals > 0) text[--at] = '.';
        text[--at] = static_cast<char>('0' + digits % 10);
        digits /= 10;
        ++written;
    }
    while (at < text.size())
        *to++ = text[at++];
    return to;
}

}  // namespace

void AppendStreamText(std::string& out, double value) {
    std::array<char, 40> text{};
    const double magnitude = std::abs(value);
    if (magnitude >= 1e-4 && magnitude < 1e5) {
        text[0] = '-';
        if (const char* end = ShortText(text.data() + 1, magnitude)) {
            const char* begin = text.data() + (value < 0 ? 0 : 1);
            out.append(begin, end);
            return;
        }
    }
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
    out.append(text.data(), result.ptr);
}

void AppendStreamLine(std::string& out, std::span<const double> values) {
    out.reserve(out.size() + values.size() * 10);
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (k != 0) out += ' ';
        AppendStreamText(out, values[k]);
    }
}

std::string StreamLines(const ChainBuffers& buffers) {
    std::string out;
    for (std::size_t chain = 0; chain < buffers.Chains(); ++chain) {
        if (chain != 0) out += '\n';
        AppendStreamLine(out, buffers[chain]);
    }
    return out;
}
