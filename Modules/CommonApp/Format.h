// Message templates: the one way this system builds a text for a person or a log.
#pragma once

#include <concepts>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Utilities {

/// Process-wide lists of filters that edit message templates and outputs.
/// Thread: register filters at start-up only; reading takes no lock.
class FormatProviders {
public:
    using PreProcessor = void (*)(std::string&);
    using PostProcessor = void (*)(const void*, const void*);

    /// The instance, made at first use.
    static FormatProviders& Instance();

    virtual void PreProcess(std::string& text);
    /// Runs the output filters and answers its first argument.
    virtual const void* PostProcess(const void* first, const void* second);

    /// A filter registered again moves to the end.
    void AddPreProcessor(PreProcessor filter);
    void AddPostProcessor(PostProcessor filter);
    void RemovePreProcessor(PreProcessor filter);
    void RemovePostProcessor(PostProcessor filter);

private:
    FormatProviders() = default;
    ~FormatProviders() = default;
    std::vector<PreProcessor> m_preProcessors;
    std::vector<PostProcessor> m_postProcessors;
};

}  // namespace Utilities

namespace Common {

/// Digits of `value` in `base` (2 to 16, upper case). Base 16 with width 0 means width 8; a non-zero width fills with
/// "0" from the left.
std::string ToDecimalText(std::uint64_t value, unsigned base = 10, unsigned width = 0);

/// A value as a default output stream writes it: six significant digits, general notation, no locale.
std::string ToStreamText(double value);

/// How a type of ours becomes the text of an argument. Upper modules specialise this for their enumerations:
/// `static std::string Text(const T&)`.
template <typename T>
struct FormatText;

template <typename T>
concept HasFormatText = requires(const T& value) {
    { FormatText<T>::Text(value) } -> std::convertible_to<std::string>;
};

/// A template with the placeholders ${1}, ${2}, ... filled one after the other by `%`:
/// `Format("channel ${1} of ${2}") % 36 % "5.2"`. Unfilled placeholders stay in the text; surplus arguments vanish.
/// A later argument also fills tokens that an earlier argument's text brought in.
class Format {
public:
    Format(std::string text);  // implicit: a plain literal is a template without arguments
    Format(const char* text) : Format(std::string(text ? text : "")) {}

    Format& operator%(const char* value) { return Apply(value ? value : ""); }
    Format& operator%(const std::string& value) { return Apply(value); }
    Format& operator%(std::string_view value) { return Apply(value); }
    Format& operator%(bool value) { return Apply(value ? "1" : "0"); }
    Format& operator%(double value) { return Apply(ToStreamText(value)); }
    Format& operator%(float value) { return Apply(ToStreamText(static_cast<double>(value))); }
    /// The other template's current text, with the template filters run over it once more.
    Format& operator%(const Format& value);

    template <std::integral T>
    Format& operator%(T value) {
        return Apply(std::to_string(value));
    }
    template <HasFormatText T>
    Format& operator%(const T& value) {
        return Apply(FormatText<T>::Text(value));
    }

    operator std::string() const { return m_text; }
    const std::string& Text() const { return m_text; }
    friend std::ostream& operator<<(std::ostream& stream, const Format& format) { return stream << format.m_text; }

private:
    Format& Apply(std::string_view argument);

    std::string m_text;
    std::uint32_t m_argumentCount = 0;
};

}  // namespace Common
