#include "ServiceDomain.h"

#include <algorithm>
#include <utility>

#include "Caught.h"
#include "Format.h"

namespace Core {

ServiceDomain::ServiceHolder::ServiceHolder(ServiceDomain& owner, std::string name,
                                            std::shared_ptr<AClassCreator> pCreator)
    : m_name(std::move(name)), m_creator(std::move(pCreator)) {
    constexpr const char* function = "Core::ServiceDomain::ServiceHolder::ServiceHolder";
    if (!m_creator) FailAssertion("pCreator", __FILE__, __LINE__, function);
    try {
        m_object = m_creator->CreateInterface();
        m_service = dynamic_cast<IService*>(m_object);
        if (!m_service) FailAssertion("m_pService", __FILE__, __LINE__, function);
        m_service->Attach(owner);
    } catch (...) {
        End();
        throw;
    }
}

ServiceDomain::ServiceHolder::~ServiceHolder() {
    End();
}

void ServiceDomain::ServiceHolder::End() noexcept {
    if (m_service && m_service->IsAttached())
        Common::RunCaught([this] { m_service->Detach(); }, [](const Common::Caught&) {});  // it goes all the same
    if (m_object) m_creator->DestroyInterface(m_object);
}

ServiceDomain::ServiceHolder* ServiceDomain::ServiceEnumerator::NextItem() {
    return m_next < m_domain.m_holders.size() ? m_domain.m_holders[m_next++].get() : nullptr;
}

ServiceDomain::~ServiceDomain() {
    while (!m_holders.empty()) {
        const std::unique_ptr<ServiceHolder> last = std::move(m_holders.back());
        m_holders.pop_back();
        m_live.Remove(last->GetName());
    }
}

void ServiceDomain::Attach(IServiceDomain& domain) {
    // A ring of domains would ask itself for ever.
    for (const IServiceDomain* above = &domain; above; above = above->IsAttached() ? &above->GetDomain() : nullptr)
        CORE_ASSERT(above != this, "Core::ServiceDomain::Attach");
    Service::Attach(domain);
}

ServiceDomain::ServiceHolder* ServiceDomain::FindHolder(const std::string& name) const {
    const IInterface* live = m_live.FindLocal(name);
    return const_cast<ServiceHolder*>(dynamic_cast<const ServiceHolder*>(live));
}

const IInterface* ServiceDomain::FindLocal(const std::string& name) const {
    const ServiceHolder* holder = FindHolder(name);
    return holder ? &holder->GetService() : nullptr;
}

ServiceDomain::ServiceHolder* ServiceDomain::CreateHolder(const std::string& name) {
    const auto creator = GetCreator(name);
    if (!creator) return nullptr;
    // Noticed on the way in: a service that asks for itself whenever it is attached would never come back.
    if (!m_inCreation.insert(name).second)
        Fail(Common::Format("Circular dependance detected! Please check ${1}") % name, __FILE__, __LINE__,
             "Core::ServiceDomain::CreateHolder");
    std::unique_ptr<ServiceHolder> holder;
    try {
        holder = std::make_unique<ServiceHolder>(*this, name, creator);
    } catch (...) {
        m_inCreation.erase(name);
        throw;
    }
    m_inCreation.erase(name);
    ServiceHolder* created = holder.get();
    m_holders.push_back(std::move(holder));
    m_live.Add(name, created);
    return created;
}

IService* ServiceDomain::Query(const std::string& path) {
    std::string rest;
    const std::string name = TakeName(path, rest);
    if (name.empty() || !IsRegistered(name)) return IsAttached() ? Service::Query(path) : nullptr;
    ServiceHolder* holder = FindHolder(name);
    if (holder)
        holder->AddRef();
    else
        holder = CreateHolder(name);
    if (!holder || rest.empty()) return holder ? &holder->GetService() : nullptr;
    IService* nested = nullptr;
    try {
        if (auto* domain = dynamic_cast<IServiceDomain*>(&holder->GetService())) nested = domain->Query(rest);
    } catch (...) {
        Release(name);
        throw;
    }
    if (!nested) Release(name);
    return nested;
}

void ServiceDomain::Release(const std::string& path) {
    std::string rest;
    const std::string name = TakeName(path, rest);
    ServiceHolder* holder = FindHolder(name);
    if (!holder) {
        if (IsAttached()) Service::Release(path);
        return;
    }
    if (!rest.empty())
        if (auto* domain = dynamic_cast<IServiceDomain*>(&holder->GetService())) domain->Release(rest);
    if (holder->Release() > 0) return;
    m_live.Remove(name);
    const auto entry =
        std::find_if(m_holders.begin(), m_holders.end(), [holder](const auto& owned) { return owned.get() == holder; });
    const std::unique_ptr<ServiceHolder> last = std::move(*entry);
    m_holders.erase(entry);
}

bool ServiceDomain::IsAvailable(const std::string& path) const {
    std::string rest;
    const std::string name = TakeName(path, rest);
    if (!rest.empty()) {
        const ServiceHolder* holder = FindHolder(name);
        const auto* domain = holder ? dynamic_cast<const IServiceDomain*>(&holder->GetService()) : nullptr;
        return domain && domain->IsAvailable(rest);
    }
    return IsRegistered(name) || (IsAttached() && Service::IsAvailable(path));
}

bool ServiceDomain::Enumerate(const Visitor& visitor, const std::string& context) {
    const bool creators = ClassFactory::Enumerate(visitor, context);
    ServiceEnumerator services(*this);
    while (ServiceHolder* holder = services.NextItem())
        if (!Visit(visitor, context, holder->GetName(), &holder->GetService())) return false;
    return creators;
}

}  // namespace Core
