#include "MetaType.h"

namespace CoreTypes {

TextMaps::TextMaps(const EnumTable& table) {
    for (const EnumRow& row : table.rows) {
        Add(row.value, row.display);
        if (!row.also.empty()) Add(row.value, row.also);
    }
    if (table.generate) table.generate(*this);
}

void TextMaps::Add(std::int32_t value, std::string_view text) {
    m_displays.try_emplace(value, text);
    m_values.insert_or_assign(std::string(text), value);
}

std::set<std::string> TextMaps::GetNames() const {
    std::set<std::string> names;
    for (const auto& [text, value] : m_values)
        names.insert(names.end(), text);
    return names;
}

std::optional<std::int32_t> TextMaps::Find(std::string_view text) const {
    const auto found = m_values.find(text);
    return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

std::string TextMaps::Display(std::int32_t value) const {
    const auto found = m_displays.find(value);
    return found == m_displays.end() ? std::string() : found->second;
}

}  // namespace CoreTypes
