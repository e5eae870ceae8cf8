// The journal and the fault plan as one wrapper round any adapter, so that each kind of radio gets both.
#pragma once

#include <functional>
#include <utility>

#include "Monitor/FaultPlan.h"
#include "Monitor/Journal.h"
#include "QuayCommands.h"

namespace quayCommand {

/// What happens to each call before the adapter gets it: the journal's line, then the planned fault.
class CallMonitor {
public:
    /// @param onLostSetUp  called when a planned fault leaves the receiver in an unknown state
    CallMonitor(Journal& journal, FaultPlan& faults, std::function<void()> onLostSetUp)
        : m_journal(journal), m_faults(faults), m_onLostSetUp(std::move(onLostSetUp)) {}
    void Call(Operation operation, std::span<const std::uint32_t> words = {});

private:
    Journal& m_journal;
    FaultPlan& m_faults;
    std::function<void()> m_onLostSetUp;
};

class MonitoredAdc : public IAdcCommands {
public:
    MonitoredAdc(IAdcCommands& adc, CallMonitor& monitor) : m_adc(adc), m_monitor(monitor) {}
    void ConfigTxRx(const RxConfig* config) override;
    void StartStopAllPeriodicCalibrations() override;
    void SetCaptureMode(bool on) override;
    void PrepareCaptureA(const PrepareRecordA& record) override;
    void PrepareCaptureB(const PrepareRecordB& record) override;
    void SetManualGainA(const GainConfig& gain) override;
    void SetManualGainB(const GainConfigB& gain) override;
    void SetManualGainC(const GainConfigC& gain) override;
    std::uint32_t GetCaptureLength() override;
    void GetCaptureState(CaptureState& out) override;
    void SetCaptureDescriptorA(const CaptureDescriptorA& descriptor) override;
    void SetCaptureDescriptorB(const CaptureDescriptorB& descriptor) override;
    void SetCaptureDescriptorC(const CaptureDescriptorC& descriptor) override;
    void SetCaptureDescriptorD(const CaptureDescriptorD& descriptor) override;
    void SetCaptureSource(const CaptureSource& record) override;
    bool ReadCapture(const AdcReadRequest& request, double** i, double** q) override;
    bool ReadCaptureEx(const AdcReadRequest& request, double** i, double** q, std::uint8_t* metadata) override;
    std::uint32_t GetBoardSku() override;
    void GetUcodeVersion(std::array<std::uint32_t, 2>& out) override;
    void GetDriverVersion(std::array<char, 256>& out) override;
    void GetUscVersion(std::array<std::uint32_t, 4>& out) override;
    void GetSVDriverVersion(std::array<std::uint32_t, 4>& out) override;
    /// No call to the radio: neither the journal nor the fault plan knows it.
    unsigned ChainsReadWhole() override { return m_adc.ChainsReadWhole(); }

private:
    IAdcCommands& m_adc;
    CallMonitor& m_monitor;
};

class MonitoredDeviceInfo : public IDeviceInfo {
public:
    MonitoredDeviceInfo(IDeviceInfo& info, CallMonitor& monitor) : m_info(info), m_monitor(monitor) {}
    void Reload() override;
    std::set<std::uint32_t> GetSupportedBands() override;
    std::uint32_t GetAntennaMask() override;

private:
    IDeviceInfo& m_info;
    CallMonitor& m_monitor;
};

class MonitoredWifi : public IWifiCommands {
public:
    /// Asks `wifi` for its two further objects at once, unrecorded.
    MonitoredWifi(IWifiCommands& wifi, CallMonitor& monitor);
    bool IsConnected() override;
    std::uint32_t GetCardType() override;
    std::uint32_t GetHwType() override;
    std::uint32_t GetPlatformDeviceId() override;
    std::uint32_t GetVendorId() override;
    std::uint32_t GetSubsystemId() override;
    std::uint32_t GetRevisionId() override;
    IAdcCommands* GetAdcObject() override;
    IDeviceInfo* GetDeviceInfo() override;
    void SetLmac(std::uint32_t band) override;
    void ResetAdapter() override;

private:
    IWifiCommands& m_wifi;
    CallMonitor& m_monitor;
    MonitoredAdc m_adc;
    MonitoredDeviceInfo m_info;
};

class MonitoredNvm : public NvmCommands {
public:
    MonitoredNvm(NvmCommands& nvm, CallMonitor& monitor) : m_nvm(nvm), m_monitor(monitor) {}
    void SetMetadata(std::string document) override;
    void GetMacAddress(std::string& out) override;
    bool IsBandEnabled(std::uint32_t band) override;
    bool IsChannelSupported(std::uint32_t channel, std::uint32_t bandwidth, std::uint32_t band) override;
    void SetMcc(std::uint16_t code, bool apply) override;
    void ApplyMcc() override;

private:
    NvmCommands& m_nvm;
    CallMonitor& m_monitor;
};

}  // namespace quayCommand
