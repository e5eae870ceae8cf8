#include "ClassFactory.h"

#include <utility>

namespace Core {

void ClassFactory::Register(const std::string& name, std::shared_ptr<AClassCreator> creator) {
    CORE_ASSERT(creator, "Core::ClassFactory::Register");
    m_creators.insert_or_assign(name, std::move(creator));
}

std::shared_ptr<AClassCreator> ClassFactory::GetCreator(const std::string& name) const {
    const auto found = m_creators.find(name);
    return found == m_creators.end() ? nullptr : found->second;
}

bool ClassFactory::Enumerate(const Visitor& visitor, const std::string& context) {
    std::string prefix = context;
    if (!prefix.empty()) prefix += ANamespace::GetSeparator();
    for (const auto& [name, creator] : m_creators)
        if (!visitor(prefix + name, nullptr)) return false;
    return true;
}

IInterface* ClassFactory::Create(const std::string& name) {
    const auto creator = GetCreator(name);
    return creator ? creator->CreateInterface() : nullptr;
}

}  // namespace Core
