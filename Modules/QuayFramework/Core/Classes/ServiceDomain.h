// A container of services that are made on demand.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ClassFactory.h"

namespace Core {

class IEnumerator : public virtual IInterface {
public:
    /// The next object, or null at the end.
    virtual IInterface* Next() = 0;
};

/// Walks objects of type T, which belong to what is walked and must not change meanwhile.
template <typename T>
class AGenericEnumerator : public virtual IEnumerator {
public:
    virtual T* NextItem() = 0;
    IInterface* Next() override { return NextItem(); }
};

/// Services by name: the creators are registered as with any factory. A name consists of letters, digits and "_".
/// Destroying the domain destroys its services from the last to the first, whoever still uses them.
class ServiceDomain : public ClassFactory, public ANamespace, public virtual IServiceDomain {
public:
    /// One live service.
    class ServiceHolder : public virtual IInterface {
    public:
        /// Creates the service and attaches it to `owner`.
        ServiceHolder(ServiceDomain& owner, std::string name, std::shared_ptr<AClassCreator> creator);
        ServiceHolder(const ServiceHolder&) = delete;
        ServiceHolder& operator=(const ServiceHolder&) = delete;
        ~ServiceHolder() override;

        const std::string& GetName() const { return m_name; }
        IService& GetService() const { return *m_service; }
        void AddRef() { ++m_refCount; }
        /// The count that is left.
        std::size_t Release() { return --m_refCount; }

    private:
        void End() noexcept;

        std::string m_name;
        std::size_t m_refCount = 1;
        std::shared_ptr<AClassCreator> m_creator;
        IInterface* m_object = nullptr;
        IService* m_service = nullptr;
    };

    class ServiceEnumerator : public AGenericEnumerator<ServiceHolder> {
    public:
        explicit ServiceEnumerator(const ServiceDomain& domain) : m_domain(domain) {}
        ServiceHolder* NextItem() override;

    private:
        const ServiceDomain& m_domain;
        std::size_t m_next = 0;
    };

    ~ServiceDomain() override;

    /// Attaches this domain under another one, which is asked for what isn't registered here.
    void Attach(IServiceDomain& domain) override;
    IService* Query(const std::string& path) override;
    void Release(const std::string& path) override;
    bool IsAvailable(const std::string& path) const override;
    /// The holders of the live services, in order of creation.
    std::unique_ptr<IEnumerator> GetServices() const { return std::make_unique<ServiceEnumerator>(*this); }
    /// Walks the names of the creators, then the live services.
    bool Enumerate(const Visitor& visitor, const std::string& context) override;

    using ANamespace::FindLocal;
    /// The live service of that name, or null.
    const IInterface* FindLocal(const std::string& name) const override;

private:
    ServiceHolder* FindHolder(const std::string& name) const;
    ServiceHolder* CreateHolder(const std::string& name);

    std::vector<std::unique_ptr<ServiceHolder>> m_holders;
    Namespace m_live;
    std::set<std::string> m_inCreation;
};

using DynamicDomain = ServiceDomain;

}  // namespace Core
