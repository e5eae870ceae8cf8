#include "Environment/Variables.h"

#include "Xml/Node.h"

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

void Variables::Load(const XML::Node* node) {
    if (!node) return;
    for (const auto& [path, variable] : node->FindAll("Variable"))
        Set(variable->GetOrEmpty("name"), variable->GetOrEmpty("value"));
}

}  // namespace Environment
