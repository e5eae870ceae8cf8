// The two functions that a host finds by name.
#include <memory>

#include "Caught.h"
#include "ITrellisPlugin.h"
#include "Web/TarnWifiFlowsWeb.h"
#include "WifiDefs.h"  // starts the typed values when the library loads

namespace {

/// The one object of the process. A host that never destroys it leaves it to the end of the process, when the things
/// that a destructor needs may be gone.
ITrellisPlugin* instance = nullptr;

}  // namespace

/// Gives the one object of the process, made at the first call; later arguments are ignored.
/// @param host  gets messages; not owned, may be null
/// @param web   true for the front-end variant
/// @return null when there is no room for it
extern "C" __attribute__((visibility("default"))) ITrellisPlugin* CreateInstance(IHostOutput* host, bool web) {
    if (instance) return instance;
    const auto make = [&] {
        if (web)
            instance = std::make_unique<TarnWifiFlowsWeb>(host).release();
        else
            instance = std::make_unique<TarnWifiFlows>(host).release();
    };
    Common::RunCaught(make, [](const Common::Caught&) {});
    return instance;
}

extern "C" __attribute__((visibility("default"))) void DestroyInstance() {
    delete instance;
    instance = nullptr;
}
