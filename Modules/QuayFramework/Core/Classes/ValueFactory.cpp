#include "ValueFactory.h"

namespace Core {

ValueFactory& ValueFactory::Instance() {
    static ValueFactory factory;
    return factory;
}

std::pair<std::string, std::string> ValueFactory::Split(std::string description) {
    if (description.size() < 2 || description.front() != '{' || description.back() != '}') return {description, {}};
    description = description.substr(1, description.size() - 2);
    const std::size_t colon = description.find(':');
    if (colon == std::string::npos) return {description, {}};
    return {description.substr(0, colon), description.substr(colon + 1)};
}

IValue* ValueFactory::Create(const std::string& description) {
    const auto [type, text] = Split(description);
    return text.empty() ? GenericFactory::Create(type) : Create(type, text);
}

IValue* ValueFactory::Create(const std::string& typeName, const std::string& text) {
    IValue* value = GenericFactory::Create(typeName);
    if (value) value->FromString(text);
    return value;
}

bool ValueFactory::IsKnown(const std::string& description) const {
    const auto [type, text] = Split(description);
    return !text.empty() && IsRegistered(type);
}

void ValueFactory::Unregister(const std::string& typeName) {
    m_descriptors.erase(typeName);
    GenericFactory::Unregister(typeName);
}

ITypeDescriptor* ValueFactory::GetDescriptor(const std::string& typeName) const {
    const auto found = m_descriptors.find(typeName);
    return found == m_descriptors.end() ? nullptr : found->second.get();
}

}  // namespace Core
