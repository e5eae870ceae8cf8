// A service: an object that a domain creates at the first request and destroys after the last release.
#pragma once

#include <cstddef>
#include <list>
#include <string>

#include "Namespace.h"

namespace Core {

class IServiceDomain;

class IService : public virtual IInterface {
public:
    virtual void Attach(IServiceDomain& domain) = 0;
    virtual void Detach() = 0;
    virtual bool IsAttached() const = 0;
    /// Throws Utilities::Exception when the service is attached to no domain.
    virtual IServiceDomain& GetDomain() const = 0;
};

/// Part of a tree of names that holds live services.
class IServiceSpace : public virtual INamespace {};

/// Creates services by name and counts their users.
class IServiceDomain : public virtual IService, public virtual IServiceSpace {
public:
    /// The service of that name, made when it is not alive, with one user more; null when there is none. A further
    /// part of the path is asked of the service, which must be a domain then.
    virtual IService* Query(const std::string& path) = 0;
    /// One user less; the service is destroyed with the last one.
    virtual void Release(const std::string& path) = 0;
    virtual bool IsAvailable(const std::string& path) const = 0;
};

using IDynamicDomain = IServiceDomain;

class Service : public virtual IService {
public:
    Service() = default;
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    void Attach(IServiceDomain& domain) override;
    void Detach() override { OnDetach(); }
    bool IsAttached() const override { return m_domain != nullptr; }
    IServiceDomain& GetDomain() const override;

    /// Called when the service has got its domain; the place to query what it needs.
    virtual void OnAttach() {}
    /// With the last attachment gone, releases what the service holds and forgets the domain.
    virtual void OnDetach();
    virtual void ReleaseAll();
    /// Query in the domain; what is found is held until it is released or the service detached.
    virtual IService* Query(const std::string& name);
    /// Releases a service that this one holds; does nothing for another name.
    virtual void Release(const std::string& name);
    virtual bool IsAvailable(const std::string& name) const;

private:
    IServiceDomain* m_domain = nullptr;
    std::size_t m_attachCount = 0;
    std::list<std::string> m_held;
};

}  // namespace Core
