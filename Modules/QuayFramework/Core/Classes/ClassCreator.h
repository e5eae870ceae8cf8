// Creation of objects behind an interface.
#pragma once

#include "CoreObject.h"

namespace Core {

/// A creator as a class factory keeps it, whatever interface it hands out.
class AClassCreator {
public:
    virtual ~AClassCreator() = default;
    /// A new object, which belongs to the caller.
    virtual IInterface* CreateInterface() = 0;
    virtual void DestroyInterface(IInterface* object) { delete object; }
};

/// Creates objects that are handed out as an I; they belong to the caller.
template <typename I>
class IClassCreator : public AClassCreator {
public:
    virtual I* Create() = 0;
    virtual void Destroy(I* object) { delete object; }
    /// The same as Create; a creator that is known by its own type gives the concrete type here.
    virtual I* CreateAsCreated() = 0;
    IInterface* CreateInterface() override { return Create(); }
};

template <typename C, typename I>
class ClassCreator : public IClassCreator<I> {
public:
    I* Create() override { return CreateAsCreated(); }
    C* CreateAsCreated() override { return new C; }
};

}  // namespace Core
