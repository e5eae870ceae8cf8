// The one list of the radio's operations: the journal writes these names and a fault plan is looked up in them.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace quayCommand {

enum class Operation : std::size_t {
    // IWifiCommands
    IsConnected,
    GetCardType,
    GetHwType,
    GetPlatformDeviceId,
    GetVendorId,
    GetSubsystemId,
    GetRevisionId,
    GetAdcObject,
    GetDeviceInfo,
    SetLmac,
    ResetAdapter,
    // IDeviceInfo
    Reload,
    GetSupportedBands,
    GetAntennaMask,
    // IAdcCommands
    ConfigTxRx,
    StartStopAllPeriodicCalibrations,
    SetCaptureMode,
    PrepareCaptureA,
    PrepareCaptureB,
    SetManualGainA,
    SetManualGainB,
    SetManualGainC,
    GetCaptureLength,
    GetCaptureState,
    SetCaptureDescriptorA,
    SetCaptureDescriptorB,
    SetCaptureDescriptorC,
    SetCaptureDescriptorD,
    SetCaptureSource,
    ReadCapture,
    ReadCaptureEx,
    GetBoardSku,
    GetUcodeVersion,
    GetDriverVersion,
    GetUscVersion,
    GetSVDriverVersion,
    // NvmCommands
    SetMetadata,
    GetMacAddress,
    IsBandEnabled,
    IsChannelSupported,
    SetMcc,
    ApplyMcc,
    Count
};

constexpr auto OperationCount = static_cast<std::size_t>(Operation::Count);

/// In the order of the enumeration.
constexpr std::array<std::string_view, OperationCount> OperationNames{"IsConnected",
                                                                      "GetCardType",
                                                                      "GetHwType",
                                                                      "GetPlatformDeviceId",
                                                                      "GetVendorId",
                                                                      "GetSubsystemId",
                                                                      "GetRevisionId",
                                                                      "GetAdcObject",
                                                                      "GetDeviceInfo",
                                                                      "SetLmac",
                                                                      "ResetAdapter",
                                                                      "Reload",
                                                                      "GetSupportedBands",
                                                                      "GetAntennaMask",
                                                                      "ConfigTxRx",
                                                                      "StartStopAllPeriodicCalibrations",
                                                                      "SetCaptureMode",
                                                                      "PrepareCaptureA",
                                                                      "PrepareCaptureB",
                                                                      "SetManualGainA",
                                                                      "SetManualGainB",
                                                                      "SetManualGainC",
                                                                      "GetCaptureLength",
                                                                      "GetCaptureState",
                                                                      "SetCaptureDescriptorA",
                                                                      "SetCaptureDescriptorB",
                                                                      "SetCaptureDescriptorC",
                                                                      "SetCaptureDescriptorD",
                                                                      "SetCaptureSource",
                                                                      "ReadCapture",
                                                                      "ReadCaptureEx",
                                                                      "GetBoardSku",
                                                                      "GetUcodeVersion",
                                                                      "GetDriverVersion",
                                                                      "GetUscVersion",
                                                                      "GetSVDriverVersion",
                                                                      "SetMetadata",
                                                                      "GetMacAddress",
                                                                      "IsBandEnabled",
                                                                      "IsChannelSupported",
                                                                      "SetMcc",
                                                                      "ApplyMcc"};
static_assert(OperationNames.back() == "ApplyMcc");

constexpr std::string_view NameOf(Operation operation) {
    return OperationNames[static_cast<std::size_t>(operation)];
}

constexpr std::optional<Operation> OperationOf(std::string_view name) {
    for (std::size_t k = 0; k < OperationCount; ++k)
        if (OperationNames[k] == name) return static_cast<Operation>(k);
    return {};
}

}  // namespace quayCommand
