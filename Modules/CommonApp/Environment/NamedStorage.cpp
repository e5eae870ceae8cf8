#include "Environment/NamedStorage.h"

#include <cassert>

const std::string* NamedStorage::Get(const std::string& name) const {
    assert(m_pParent != this);
    return m_pParent ? m_pParent->Get(name) : nullptr;
}

std::string NamedStorage::GetOrEmpty(const std::string& name) const {
    const auto* value = Get(name);
    return value ? *value : std::string();
}

void NamedStorage::Expand(std::string& text, bool removeUnknown) const {
    static constexpr const char* nameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";
    constexpr int mostReplacements = 10000;
    std::size_t position = 0;
    for (int replacements = 0; replacements < mostReplacements;) {
        const auto close = text.find(')', position);
        if (close == std::string::npos) return;
        position = close + 1;
        const auto open = text.rfind("$(", close);
        if (open == std::string::npos) continue;
        const auto name = text.substr(open + 2, close - open - 2);
        if (name.find_first_not_of(nameCharacters) != std::string::npos) continue;
        const auto* value = Get(name);
        if (!value && !removeUnknown) continue;
        text.replace(open, close + 1 - open, value ? *value : std::string());
        position = open;  // the value is looked at again
        ++replacements;
    }
}

std::string NamedStorage::Expanded(std::string text, bool removeUnknown) const {
    Expand(text, removeUnknown);
    return text;
}

void NamedStorage::SetParent(NamedStorage* parent) {
    if (!parent) return;
    if (m_pParent)
        m_pParent->SetParent(parent);
    else
        m_pParent = parent;
}

namespace Environment {

const std::string* Variables::Get(const std::string& name) const {
    const auto found = m_values.find(name);
    return found == m_values.end() ? NamedStorage::Get(name) : &found->second;
}

void Variables::CopyTo(NamedStorage& target) const {
    for (const auto& [name, value] : m_values)
        target.Set(name, value);
}

std::string& Variables::operator[](const std::string& name) {
    return m_values[Expanded(name, false)];
}

}  // namespace Environment
