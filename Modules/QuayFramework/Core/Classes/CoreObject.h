// The root of the interfaces of this framework.
#pragma once

#include "OSAL/Locks.h"  // Utilities::IObject
#include "Singleton.h"

namespace Core {

/// Root of the framework's interfaces; all are reached from here by dynamic cast.
class IInterface : public virtual Utilities::IObject {};

}  // namespace Core
