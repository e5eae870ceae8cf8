#include "SampleFile.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <fstream>
#include <system_error>

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

std::optional<Failure> WriteWhole(const std::filesystem::path& path, const std::string& text) {
    const auto part = path.parent_path() / ("." + path.filename().string() + ".part");
    errno = 0;
    std::ofstream file(part, std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    std::error_code error(errno, std::generic_category());
    if (file) {
        std::filesystem::rename(part, path, error);
        if (!error) return std::nullopt;
    }
    std::error_code ignored;
    std::filesystem::remove(part, ignored);
    return Failure{"can't write '" + path.string() + "': " + (error ? error.message() : "unknown reason")};
}

}  // namespace TarnHost
