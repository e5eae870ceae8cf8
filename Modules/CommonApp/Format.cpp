#include "Format.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Utilities {

FormatProviders& FormatProviders::Instance() {
    static FormatProviders instance;
    return instance;
}

void FormatProviders::PreProcess(std::string& text) {
    for (const auto filter : m_preProcessors)
        filter(text);
}

const void* FormatProviders::PostProcess(const void* first, const void* second) {
    for (const auto filter : m_postProcessors)
        filter(first, second);
    return first;
}

void FormatProviders::AddPreProcessor(PreProcessor filter) {
    RemovePreProcessor(filter);
    m_preProcessors.push_back(filter);
}

void FormatProviders::AddPostProcessor(PostProcessor filter) {
    RemovePostProcessor(filter);
    m_postProcessors.push_back(filter);
}

void FormatProviders::RemovePreProcessor(PreProcessor filter) {
    std::erase(m_preProcessors, filter);
}

void FormatProviders::RemovePostProcessor(PostProcessor filter) {
    std::erase(m_postProcessors, filter);
}

}  // namespace Utilities

namespace Common {

std::string ToDecimalText(std::uint64_t value, unsigned base, unsigned width) {
    std::array<char, 64> digits;
    const auto usedBase = static_cast<int>(std::clamp(base, 2u, 16u));
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, usedBase).ptr;
    std::string text(digits.data(), end);
    for (char& c : text)
        if (c >= 'a') c = static_cast<char>(c - 'a' + 'A');
    const std::size_t filled = base == 16 && width == 0 ? 8 : width;
    return text.size() < filled ? std::string(filled - text.size(), '0') + text : text;
}

std::string ToStreamText(double value) {
    // "%.6g" of the language's definition is general notation with six digits, as a stream writes it by default.
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::general, 6);
    return {digits.data(), end.ptr};
}

Format::Format(std::string text) : m_text(std::move(text)) {
    Utilities::FormatProviders::Instance().PreProcess(m_text);
}

Format& Format::operator%(const Format& value) {
    return Apply(Format(value.m_text).m_text);
}

Format& Format::Apply(std::string_view argument) {
    const std::string token = "${" + std::to_string(++m_argumentCount) + "}";
    // An argument that brings in its own token would be replaced for ever: then each place of the template gets one.
    const bool isRecursive = argument.find(token) != std::string_view::npos;
    const std::string text(argument);  // the argument may be a view of this very text
    // Text around an inserted argument can form the token anew; the limit ends what would go on for ever.
    auto replacementsLeft = m_text.size();
    auto at = m_text.find(token);
    while (at != std::string::npos && replacementsLeft-- > 0) {
        m_text.replace(at, token.size(), text);
        const auto reach = token.size() - 1;
        at = m_text.find(token, isRecursive ? at + text.size() : at - std::min(at, reach));
    }
    return *this;
}

}  // namespace Common
