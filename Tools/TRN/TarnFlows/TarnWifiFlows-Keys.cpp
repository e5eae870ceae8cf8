// Binds the operations that the rows of the key table name.
#include <array>

#include "Streams/Trace.h"
#include "Support/FlowKeys.h"
#include "TarnWifiFlows.h"

namespace {

#define COMMON_KEY(operation, name, ...) {name, &TarnCommonFlows::operation},
#define WIFI_KEY(...)
constexpr auto CommonKeys = std::to_array<KeyOperation<TarnCommonFlows>>({
#include "KeyRows.h"
});
#undef COMMON_KEY
#undef WIFI_KEY

#define COMMON_KEY(...)
#define WIFI_KEY(operation, name, ...) {name, &TarnWifiFlows::operation},
constexpr auto WifiKeys = std::to_array<KeyOperation<TarnWifiFlows>>({
#include "KeyRows.h"
});
#undef COMMON_KEY
#undef WIFI_KEY

}  // namespace

void TarnCommonFlows::Init() {
    TRACE_SCOPE("TarnCommonFlows::Init");
    FlowKeys::Add<TarnCommonFlows>(*this, CommonKeys);
}

void TarnWifiFlows::RegisterKeys() {
    FlowKeys::Add<TarnWifiFlows>(*this, WifiKeys);
}
