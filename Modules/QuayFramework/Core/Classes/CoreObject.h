// The root of the interfaces of this framework, and the process-wide instance of a type.
#pragma once

#include "OSAL/Locks.h"  // Utilities::IObject

namespace Utilities {

/// The one instance of T in the process, made at first use and destroyed at process end.
template <typename T>
class Singleton final : public T {
public:
    static T& Instance() {
        static Singleton instance;
        return instance;
    }

private:
    Singleton() = default;
};

}  // namespace Utilities

namespace Core {

/// Root of the framework's interfaces; all are reached from here by dynamic cast.
class IInterface : public virtual Utilities::IObject {};

}  // namespace Core
