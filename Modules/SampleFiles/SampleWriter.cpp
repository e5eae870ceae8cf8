#include "SampleWriter.h"

#include <array>
#include <charconv>
#include <cmath>

#include "OSAL/WholeFile.h"

namespace SampleFiles {
namespace {

void AppendCode(std::string& text, double code) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), std::lround(code)).ptr;
    text.append(digits.data(), end);
}

}  // namespace

std::string SampleText(std::span<const double> i, std::span<const double> q) {
    std::string text;
    text.reserve(i.size() * 12);
    for (std::size_t k = 0; k < i.size(); ++k) {
        AppendCode(text, i[k]);
        text += " ,";
        AppendCode(text, q[k]);
        text += '\n';
    }
    return text;
}

OSAL::Outcome<> WriteSampleFile(const std::string& path, std::span<const double> i, std::span<const double> q) {
    return OSAL::WriteWholeFile(path, SampleText(i, q));
}

}  // namespace SampleFiles
