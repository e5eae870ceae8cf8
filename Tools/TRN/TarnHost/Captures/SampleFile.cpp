#include "Captures/SampleFile.h"

#include <array>
#include <charconv>
#include <cmath>

namespace TarnHost {
namespace {

void AppendCode(std::string& text, double code) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), std::lround(code)).ptr;
    text.append(digits.data(), end);
}

}  // namespace

std::string SampleText(const Samples& samples) {
    std::string text;
    text.reserve(samples.i.size() * 12);
    for (std::size_t k = 0; k < samples.i.size(); ++k) {
        AppendCode(text, samples.i[k]);
        text += " ,";
        AppendCode(text, samples.q[k]);
        text += '\n';
    }
    return text;
}

}  // namespace TarnHost
