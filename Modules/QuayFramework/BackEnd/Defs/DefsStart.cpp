#include "DefsStart.h"

#include "BluetoothDefs.h"
#include "CoreStart.h"
#include "ValueFactory.h"
#include "WifiDefs.h"

namespace BackEnd {

namespace {

/// Makes the enumeration E known to the value factory and fills its text tables.
template <CoreTypes::Enumeration E>
void Register() {
    Core::ValueFactory::Instance().Register<E>(std::string(DescribeEnum(E{}).typeName));
    CoreTypes::MetaType<E>::Get();
}

template <CoreTypes::Enumeration... E>
bool RegisterAll() {
    (Register<E>(), ...);
    return true;
}

bool RegisterWifi() {
    using namespace Wifi;
    return RegisterAll<EBand, EBandWidth, EBandWidthMode, EControlChannel, ERate, EModulation, ETransmissionMode,
                       EAntenna, EAntennaDiversity, EMode, EPowerMode, ESendPacketsMode, EFreqMode, EPA_CORE_MODE,
                       ERegulatoryState, EResourceUnit, EGuardInterval, ELtf, ELpiMode, EMCC>();
}

bool RegisterBluetooth() {
    using namespace Bluetooth;
    return RegisterAll<EBTAntennaDiversity, EBt5Mode, EBtPowerMode, ECsLePhy, ECsMode, EGap, EPatternType,
                       EBtPacketType, EMode>();
}

}  // namespace

bool Start() {
    static const bool started = Core::Start() && RegisterWifi() && RegisterBluetooth();
    return started;
}

}  // namespace BackEnd
