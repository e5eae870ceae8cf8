#include "Monitor/MonitoredRadio.h"

#include <cstring>
#include <utility>

namespace quayCommand {
namespace {

/// A record as the 32-bit words that it has in memory; a 64-bit field is two of them.
template <typename T>
auto Words(const T& record) {
    static_assert(sizeof(T) % sizeof(std::uint32_t) == 0 && std::is_trivially_copyable_v<T>);
    std::array<std::uint32_t, sizeof(T) / sizeof(std::uint32_t)> words;
    std::memcpy(words.data(), &record, sizeof record);
    return words;
}

template <typename... T>
std::array<std::uint32_t, sizeof...(T)> Numbers(T... values) {
    return {static_cast<std::uint32_t>(values)...};
}

/// The steps of a receiver set-up: where one fails, nobody knows what the receiver is tuned to.
bool IsSetUpStep(Operation operation) {
    return operation == Operation::SetLmac || operation == Operation::ConfigTxRx ||
           operation == Operation::StartStopAllPeriodicCalibrations || operation == Operation::ResetAdapter;
}

}  // namespace

void CallMonitor::Call(Operation operation, std::span<const std::uint32_t> words) {
    m_journal.Write(NameOf(operation), words);
    try {
        m_faults.Count(operation);
    } catch (...) {
        if (IsSetUpStep(operation)) m_onLostSetUp();
        throw;
    }
}

void MonitoredAdc::ConfigTxRx(const RxConfig* config) {
    if (config)
        m_monitor.Call(Operation::ConfigTxRx, Words(*config));
    else
        m_monitor.Call(Operation::ConfigTxRx);
    m_adc.ConfigTxRx(config);
}

void MonitoredAdc::StartStopAllPeriodicCalibrations() {
    m_monitor.Call(Operation::StartStopAllPeriodicCalibrations);
    m_adc.StartStopAllPeriodicCalibrations();
}

void MonitoredAdc::SetCaptureMode(bool on) {
    m_monitor.Call(Operation::SetCaptureMode, Numbers(on));
    m_adc.SetCaptureMode(on);
}

void MonitoredAdc::PrepareCaptureA(const PrepareRecordA& record) {
    m_monitor.Call(Operation::PrepareCaptureA, record);
    m_adc.PrepareCaptureA(record);
}

void MonitoredAdc::PrepareCaptureB(const PrepareRecordB& record) {
    m_monitor.Call(Operation::PrepareCaptureB, record);
    m_adc.PrepareCaptureB(record);
}

void MonitoredAdc::SetManualGainA(const GainConfig& gain) {
    m_monitor.Call(Operation::SetManualGainA, Words(gain));
    m_adc.SetManualGainA(gain);
}

void MonitoredAdc::SetManualGainB(const GainConfigB& gain) {
    m_monitor.Call(Operation::SetManualGainB, gain);
    m_adc.SetManualGainB(gain);
}

void MonitoredAdc::SetManualGainC(const GainConfigC& gain) {
    m_monitor.Call(Operation::SetManualGainC, gain);
    m_adc.SetManualGainC(gain);
}

std::uint32_t MonitoredAdc::GetCaptureLength() {
    m_monitor.Call(Operation::GetCaptureLength);
    return m_adc.GetCaptureLength();
}

void MonitoredAdc::GetCaptureState(CaptureState& out) {
    m_monitor.Call(Operation::GetCaptureState);
    m_adc.GetCaptureState(out);
}

void MonitoredAdc::SetCaptureDescriptorA(const CaptureDescriptorA& descriptor) {
    m_monitor.Call(Operation::SetCaptureDescriptorA, descriptor);
    m_adc.SetCaptureDescriptorA(descriptor);
}

void MonitoredAdc::SetCaptureDescriptorB(const CaptureDescriptorB& descriptor) {
    m_monitor.Call(Operation::SetCaptureDescriptorB, descriptor);
    m_adc.SetCaptureDescriptorB(descriptor);
}

void MonitoredAdc::SetCaptureDescriptorC(const CaptureDescriptorC& descriptor) {
    m_monitor.Call(Operation::SetCaptureDescriptorC, descriptor);
    m_adc.SetCaptureDescriptorC(descriptor);
}

void MonitoredAdc::SetCaptureDescriptorD(const CaptureDescriptorD& descriptor) {
    m_monitor.Call(Operation::SetCaptureDescriptorD, descriptor);
    m_adc.SetCaptureDescriptorD(descriptor);
}

void MonitoredAdc::SetCaptureSource(const CaptureSource& record) {
    m_monitor.Call(Operation::SetCaptureSource, record);
    m_adc.SetCaptureSource(record);
}

bool MonitoredAdc::ReadCapture(const AdcReadRequest& request, double** i, double** q) {
    m_monitor.Call(Operation::ReadCapture, request);
    return m_adc.ReadCapture(request, i, q);
}

bool MonitoredAdc::ReadCaptureEx(const AdcReadRequest& request, double** i, double** q, std::uint8_t* metadata) {
    m_monitor.Call(Operation::ReadCaptureEx, request);
    return m_adc.ReadCaptureEx(request, i, q, metadata);
}

std::uint32_t MonitoredAdc::GetBoardSku() {
    m_monitor.Call(Operation::GetBoardSku);
    return m_adc.GetBoardSku();
}

void MonitoredAdc::GetUcodeVersion(std::array<std::uint32_t, 2>& out) {
    m_monitor.Call(Operation::GetUcodeVersion);
    m_adc.GetUcodeVersion(out);
}

void MonitoredAdc::GetDriverVersion(std::array<char, 256>& out) {
    m_monitor.Call(Operation::GetDriverVersion);
    m_adc.GetDriverVersion(out);
}

void MonitoredAdc::GetUscVersion(std::array<std::uint32_t, 4>& out) {
    m_monitor.Call(Operation::GetUscVersion);
    m_adc.GetUscVersion(out);
}

void MonitoredAdc::GetSVDriverVersion(std::array<std::uint32_t, 4>& out) {
    m_monitor.Call(Operation::GetSVDriverVersion);
    m_adc.GetSVDriverVersion(out);
}

void MonitoredDeviceInfo::Reload() {
    m_monitor.Call(Operation::Reload);
    m_info.Reload();
}

std::set<std::uint32_t> MonitoredDeviceInfo::GetSupportedBands() {
    m_monitor.Call(Operation::GetSupportedBands);
    return m_info.GetSupportedBands();
}

std::uint32_t MonitoredDeviceInfo::GetAntennaMask() {
    m_monitor.Call(Operation::GetAntennaMask);
    return m_info.GetAntennaMask();
}

MonitoredWifi::MonitoredWifi(IWifiCommands& wifi, CallMonitor& monitor)
    : m_wifi(wifi), m_monitor(monitor), m_adc(*wifi.GetAdcObject(), monitor), m_info(*wifi.GetDeviceInfo(), monitor) {}

bool MonitoredWifi::IsConnected() {
    m_monitor.Call(Operation::IsConnected);
    return m_wifi.IsConnected();
}

std::uint32_t MonitoredWifi::GetCardType() {
    m_monitor.Call(Operation::GetCardType);
    return m_wifi.GetCardType();
}

std::uint32_t MonitoredWifi::GetHwType() {
    m_monitor.Call(Operation::GetHwType);
    return m_wifi.GetHwType();
}

std::uint32_t MonitoredWifi::GetPlatformDeviceId() {
    m_monitor.Call(Operation::GetPlatformDeviceId);
    return m_wifi.GetPlatformDeviceId();
}

std::uint32_t MonitoredWifi::GetVendorId() {
    m_monitor.Call(Operation::GetVendorId);
    return m_wifi.GetVendorId();
}

std::uint32_t MonitoredWifi::GetSubsystemId() {
    m_monitor.Call(Operation::GetSubsystemId);
    return m_wifi.GetSubsystemId();
}

std::uint32_t MonitoredWifi::GetRevisionId() {
    m_monitor.Call(Operation::GetRevisionId);
    return m_wifi.GetRevisionId();
}

IAdcCommands* MonitoredWifi::GetAdcObject() {
    m_monitor.Call(Operation::GetAdcObject);
    return &m_adc;
}

IDeviceInfo* MonitoredWifi::GetDeviceInfo() {
    m_monitor.Call(Operation::GetDeviceInfo);
    return &m_info;
}

void MonitoredWifi::SetLmac(std::uint32_t band) {
    m_monitor.Call(Operation::SetLmac, Numbers(band));
    m_wifi.SetLmac(band);
}

void MonitoredWifi::ResetAdapter() {
    m_monitor.Call(Operation::ResetAdapter);
    m_wifi.ResetAdapter();
}

void MonitoredNvm::SetMetadata(std::string document) {
    m_monitor.Call(Operation::SetMetadata, Numbers(document.size()));
    m_nvm.SetMetadata(std::move(document));
}

void MonitoredNvm::GetMacAddress(std::string& out) {
    m_monitor.Call(Operation::GetMacAddress);
    m_nvm.GetMacAddress(out);
}

bool MonitoredNvm::IsBandEnabled(std::uint32_t band) {
    m_monitor.Call(Operation::IsBandEnabled, Numbers(band));
    return m_nvm.IsBandEnabled(band);
}

bool MonitoredNvm::IsChannelSupported(std::uint32_t channel, std::uint32_t bandwidth, std::uint32_t band) {
    m_monitor.Call(Operation::IsChannelSupported, Numbers(channel, bandwidth, band));
    return m_nvm.IsChannelSupported(channel, bandwidth, band);
}

void MonitoredNvm::SetMcc(std::uint16_t code, bool apply) {
    m_monitor.Call(Operation::SetMcc, Numbers(code, apply));
    m_nvm.SetMcc(code, apply);
}

void MonitoredNvm::ApplyMcc() {
    m_monitor.Call(Operation::ApplyMcc);
    m_nvm.ApplyMcc();
}

}  // namespace quayCommand
