// Factories: creators of objects by class name.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "ClassCreator.h"
#include "CoreErrors.h"
#include "Service.h"

namespace Core {

class IClassFactory : public virtual IService {
public:
    /// An object of the named class, which belongs to the caller; null for an unknown name.
    virtual IInterface* Create(const std::string& name) = 0;
    virtual bool IsRegistered(const std::string& name) const = 0;
};

class ClassFactory : public Service, public virtual IClassFactory {
public:
    /// The later creator of a name takes the place of an earlier one.
    virtual void Register(const std::string& name, std::shared_ptr<AClassCreator> creator);
    virtual void Unregister(const std::string& name) { m_creators.erase(name); }
    /// The creator, or null.
    virtual std::shared_ptr<AClassCreator> GetCreator(const std::string& name) const;
    /// Gives each name to the visitor, with the path `context` before it. False when the visitor stopped it.
    virtual bool Enumerate(const Visitor& visitor, const std::string& context);

    IInterface* Create(const std::string& name) override;
    bool IsRegistered(const std::string& name) const override { return m_creators.contains(name); }

private:
    std::map<std::string, std::shared_ptr<AClassCreator>> m_creators;
};

/// A factory whose creators all make an I.
template <typename I, typename Base>
class GenericFactory : public Base {
public:
    void Register(const std::string& name, std::shared_ptr<AClassCreator> creator) override {
        CORE_ASSERT(std::dynamic_pointer_cast<IClassCreator<I>>(creator), "Core::GenericFactory::Register");
        Base::Register(name, std::move(creator));
    }
    I* Create(const std::string& name) override {
        const auto creator = std::dynamic_pointer_cast<IClassCreator<I>>(this->GetCreator(name));
        return creator ? creator->Create() : nullptr;
    }
};

template <typename I>
class IDynamicFactory : public virtual IClassFactory {};

/// A factory that is filled at run time.
template <typename I, typename Base>
class DynamicFactory : public Base, public virtual IDynamicFactory<I> {};

}  // namespace Core
