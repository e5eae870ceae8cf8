// The one list of the radio's operations: the journal writes these names and a fault plan is looked up in them.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace quayCommand {

// Interface by interface; each name stands here and nowhere else.
#define QUAY_RADIO_OPERATIONS(X)        \
    /* IWifiCommands */                 \
    X(IsConnected)                      \
    X(GetCardType)                      \
    X(GetHwType)                        \
    X(GetPlatformDeviceId)              \
    X(GetVendorId)                      \
    X(GetSubsystemId)                   \
    X(GetRevisionId)                    \
    X(GetAdcObject)                     \
    X(GetDeviceInfo)                    \
    X(SetLmac)                          \
    X(ResetAdapter)                     \
    /* IDeviceInfo */                   \
    X(Reload)                           \
    X(GetSupportedBands)                \
    X(GetAntennaMask)                   \
    /* IAdcCommands */                  \
    X(ConfigTxRx)                       \
    X(StartStopAllPeriodicCalibrations) \
    X(SetCaptureMode)                   \
    X(PrepareCaptureA)                  \
    X(PrepareCaptureB)                  \
    X(SetManualGainA)                   \
    X(SetManualGainB)                   \
    X(SetManualGainC)                   \
    X(GetCaptureLength)                 \
    X(GetCaptureState)                  \
    X(SetCaptureDescriptorA)            \
    X(SetCaptureDescriptorB)            \
    X(SetCaptureDescriptorC)            \
    X(SetCaptureDescriptorD)            \
    X(SetCaptureSource)                 \
    X(ReadCapture)                      \
    X(ReadCaptureEx)                    \
    X(GetBoardSku)                      \
    X(GetUcodeVersion)                  \
    X(GetDriverVersion)                 \
    X(GetUscVersion)                    \
    X(GetSVDriverVersion)               \
    /* NvmCommands */                   \
    X(SetMetadata)                      \
    X(GetMacAddress)                    \
    X(IsBandEnabled)                    \
    X(IsChannelSupported)               \
    X(SetMcc)                           \
    X(ApplyMcc)

enum class Operation : std::size_t {
#define QUAY_OPERATION_VALUE(name) name,
    QUAY_RADIO_OPERATIONS(QUAY_OPERATION_VALUE)
#undef QUAY_OPERATION_VALUE
};

/// In the order of the enumeration.
constexpr std::array OperationNames{
#define QUAY_OPERATION_NAME(name) std::string_view(#name),
    QUAY_RADIO_OPERATIONS(QUAY_OPERATION_NAME)
#undef QUAY_OPERATION_NAME
};
#undef QUAY_RADIO_OPERATIONS

constexpr auto OperationCount = OperationNames.size();

constexpr std::string_view NameOf(Operation operation) {
    return OperationNames[static_cast<std::size_t>(operation)];
}

constexpr std::optional<Operation> OperationOf(std::string_view name) {
    for (std::size_t k = 0; k < OperationCount; ++k)
        if (OperationNames[k] == name) return static_cast<Operation>(k);
    return {};
}

}  // namespace quayCommand
