#include "Service.h"

#include <algorithm>

#include "CoreErrors.h"

namespace Core {

void Service::Attach(IServiceDomain& domain) {
    m_domain = &domain;
    ++m_attachCount;
    OnAttach();
}

IServiceDomain& Service::GetDomain() const {
    if (!m_domain) Fail("A service is not attached to any domain", __FILE__, __LINE__, "Core::Service::GetDomain");
    return *m_domain;
}

void Service::OnDetach() {
    CORE_ASSERT(IsAttached(), "Core::Service::OnDetach");
    if (--m_attachCount > 0) return;
    ReleaseAll();
    m_domain = nullptr;
}

void Service::ReleaseAll() {
    while (!m_held.empty()) {
        const std::string name = m_held.front();
        m_held.pop_front();
        GetDomain().Release(name);
    }
}

IService* Service::Query(const std::string& name) {
    IService* service = GetDomain().Query(name);
    if (service) m_held.push_back(name);
    return service;
}

void Service::Release(const std::string& name) {
    const auto held = std::find(m_held.begin(), m_held.end(), name);
    if (held == m_held.end()) return;
    m_held.erase(held);
    GetDomain().Release(name);
}

bool Service::IsAvailable(const std::string& name) const {
    return GetDomain().IsAvailable(name);
}

}  // namespace Core
