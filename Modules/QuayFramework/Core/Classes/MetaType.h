// The text tables of an enumeration: what each value shows as, and which texts are read as it.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "CoreObject.h"
#include "Format.h"

namespace CoreTypes {

class IMetaType {
public:
    virtual ~IMetaType() = default;
    /// True for a text that is accepted on input: byte for byte, upper and lower case differ.
    virtual bool IsValid(std::string_view text) const = 0;
    /// Number of members, that is, of values with a display text.
    virtual std::size_t GetCount() const = 0;
    /// All texts that are accepted on input.
    virtual std::set<std::string> GetNames() const = 0;
};

/// One member of an enumeration: its value, what is shown, and a further text that is accepted on input.
struct EnumRow {
    std::int32_t value;
    std::string_view display;
    std::string_view also = {};
};

class TextMaps;

/// An enumeration as data. Members that follow a rule come from `generate` instead of rows.
struct EnumTable {
    std::string_view typeName;
    std::span<const EnumRow> rows;
    void (*generate)(TextMaps&) = nullptr;
};

/// An enumeration that has a table: a function `EnumTable DescribeEnum(E)` stands in the enumeration's namespace.
template <typename T>
concept Enumeration = std::is_enum_v<T> && sizeof(T) == sizeof(std::int32_t) && requires(T value) {
    { DescribeEnum(value) } -> std::same_as<EnumTable>;
};

/// The two maps of an enumeration.
class TextMaps : public IMetaType {
public:
    /// The first text of a value is its display text. Every text reads as the value that it was added with last.
    void Add(std::int32_t value, std::string_view text);

    bool IsValid(std::string_view text) const override { return Find(text).has_value(); }
    std::size_t GetCount() const override { return m_displays.size(); }
    std::set<std::string> GetNames() const override;

    /// The value that `text` reads as.
    std::optional<std::int32_t> Find(std::string_view text) const;
    /// The display text, or the empty text when the value has none.
    std::string Display(std::int32_t value) const;
    const std::map<std::int32_t, std::string>& Displays() const { return m_displays; }

protected:
    explicit TextMaps(const EnumTable& table);

private:
    std::map<std::int32_t, std::string> m_displays;
    std::map<std::string, std::int32_t, std::less<>> m_values;
};

/// The tables of the enumeration T, filled when they are first asked for.
template <Enumeration T>
class MetaType : public TextMaps {
public:
    static MetaType& Get() { return Utilities::Singleton<MetaType>::Instance(); }

protected:
    MetaType() : TextMaps(DescribeEnum(T{})) {}
};

}  // namespace CoreTypes

/// An enumeration in a message is its display text; a value without one is the empty text.
template <CoreTypes::Enumeration T>
struct Common::FormatText<T> {
    static std::string Text(const T& value) {
        return CoreTypes::MetaType<T>::Get().Display(static_cast<std::int32_t>(value));
    }
};
