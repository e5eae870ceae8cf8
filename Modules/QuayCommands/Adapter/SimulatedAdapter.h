// An adapter that exists in software only: it accepts every call of the flows and captures what its air gives.
#pragma once

#include "Adapter/AdapterDescription.h"
#include "Adapter/CountryCode.h"
#include "Air/Air.h"
#include "QuayCommands.h"

namespace quayCommand {

/// The receiver: keeps the tuning and the gain, and captures.
class SimulatedAdc : public IAdcCommands {
public:
    /// Both must outlive this object.
    SimulatedAdc(const AdapterDescription& adapter, IAir& air) : m_adapter(adapter), m_air(air) {}
    /// Forgets tuning, gain and capture selection, as a reset adapter does.
    void Reset();

    /// A failed set-up: captures give nothing until the receiver is tuned again.
    void LoseTuning() { m_tuned = false; }

    /// Takes any channel number: one that its band lacks lies where the band's 5 MHz grid puts it.
    void ConfigTxRx(const RxConfig* config) override;
    void StartStopAllPeriodicCalibrations() override {}
    void SetCaptureMode(bool) override {}
    void PrepareCaptureA(const PrepareRecordA&) override {}
    void PrepareCaptureB(const PrepareRecordB&) override {}
    void SetManualGainA(const GainConfig& gain) override;
    void SetManualGainB(const GainConfigB& gain) override;
    void SetManualGainC(const GainConfigC& gain) override;
    std::uint32_t GetCaptureLength() override { return m_adapter.samples; }
    void GetCaptureState(CaptureState& out) override;
    void SetCaptureDescriptorA(const CaptureDescriptorA& descriptor) override { m_selector = descriptor[1]; }
    void SetCaptureDescriptorB(const CaptureDescriptorB& descriptor) override { m_selector = descriptor[1]; }
    void SetCaptureDescriptorC(const CaptureDescriptorC& descriptor) override { m_selector = descriptor[1]; }
    void SetCaptureDescriptorD(const CaptureDescriptorD& descriptor) override { m_selector = descriptor[1]; }
    void SetCaptureSource(const CaptureSource&) override {}
    /// False when nothing was captured; `LastCapture` tells why.
    bool ReadCapture(const AdcReadRequest& request, double** i, double** q) override;
    /// The metadata of a simulated capture is all zero.
    bool ReadCaptureEx(const AdcReadRequest& request, double** i, double** q, std::uint8_t* metadata) override;
    std::uint32_t GetBoardSku() override { return m_adapter.boardSku; }
    void GetUcodeVersion(std::array<std::uint32_t, 2>& out) override;
    void GetDriverVersion(std::array<char, 256>& out) override;
    void GetUscVersion(std::array<std::uint32_t, 4>& out) override;
    void GetSVDriverVersion(std::array<std::uint32_t, 4>& out) override;
    unsigned ChainsReadWhole() override;

    /// What the samples of the last read are, or why it gave none.
    const OSAL::Outcome<CaptureFacts>& LastCapture() const { return m_lastCapture; }

private:
    struct GainSetting {
        std::uint32_t preLna = 0;
        std::uint32_t internalGain = 0;
    };
    double GainDb(unsigned chain) const;
    std::uint32_t SelectedChains() const { return m_selector ? m_selector : m_tuning.m_currChain; }
    /// Why the receiver can't hear.
    OSAL::Outcome<> CheckSetUp() const;
    OSAL::Outcome<CaptureFacts> Capture(double** i, double** q);

    const AdapterDescription& m_adapter;
    IAir& m_air;
    RxConfig m_tuning;
    bool m_tuned = false;
    std::uint32_t m_selector = 0;  ///< chains of the capture as a bit mask; 0 before the first descriptor
    std::array<GainSetting, MaxChains> m_gains;
    OSAL::Outcome<CaptureFacts> m_lastCapture = OSAL::Refusal{"nothing was captured yet"};
};

class SimulatedDeviceInfo : public IDeviceInfo {
public:
    explicit SimulatedDeviceInfo(const AdapterDescription& adapter) : m_adapter(adapter) {}
    void Reload() override {}
    std::set<std::uint32_t> GetSupportedBands() override { return m_adapter.bands; }
    std::uint32_t GetAntennaMask() override { return m_adapter.antennaMask; }

private:
    const AdapterDescription& m_adapter;
};

class SimulatedWifi : public IWifiCommands {
public:
    SimulatedWifi(const AdapterDescription& adapter, IAir& air)
        : m_adapter(adapter), m_adc(adapter, air), m_info(adapter) {}
    bool IsConnected() override { return m_adapter.connected; }
    std::uint32_t GetCardType() override { return m_adapter.cardType; }
    std::uint32_t GetHwType() override { return m_adapter.hwType; }
    std::uint32_t GetPlatformDeviceId() override { return m_adapter.deviceId; }
    std::uint32_t GetVendorId() override;
    std::uint32_t GetSubsystemId() override;
    std::uint32_t GetRevisionId() override;
    SimulatedAdc* GetAdcObject() override { return &m_adc; }
    IDeviceInfo* GetDeviceInfo() override { return &m_info; }
    /// Throws for a band above 2.
    void SetLmac(std::uint32_t band) override;
    void ResetAdapter() override { m_adc.Reset(); }

private:
    const AdapterDescription& m_adapter;
    SimulatedAdc m_adc;
    SimulatedDeviceInfo m_info;
};

class SimulatedNvm : public NvmCommands {
public:
    explicit SimulatedNvm(const AdapterDescription& adapter) : m_adapter(adapter) {}
    /// The simulated memory has no layout to learn: the document is dropped.
    void SetMetadata(std::string) override {}
    void GetMacAddress(std::string& out) override { out = m_adapter.mac; }
    bool IsBandEnabled(std::uint32_t band) override { return m_adapter.bands.contains(band); }
    bool IsChannelSupported(std::uint32_t channel, std::uint32_t bandwidth, std::uint32_t band) override;
    void SetMcc(std::uint16_t code, bool apply) override;
    void ApplyMcc() override;

private:
    const AdapterDescription& m_adapter;
    std::uint16_t m_storedMcc = CountryCode('U', 'S');
    bool m_applyStored = true;
};

}  // namespace quayCommand
