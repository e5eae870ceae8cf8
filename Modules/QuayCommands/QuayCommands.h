// The radio command component: interfaces and records through which the flows reach an adapter.
// Every operation may throw; the flows decide what a failure means. Nothing is thread-safe: one thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <set>
#include <string>

namespace quayCommand {

/// Receiver set-up. Words without a meaning here pass through to the radio as they are.
struct RxConfig {
    std::uint32_t m_channel = 0;    ///< channel number
    std::uint32_t m_band = 0;       ///< 0 is 2.4 GHz, 1 is 5.2 GHz, 2 is 6-7 GHz
    std::uint32_t mode = 0;         ///< belongs to the radio
    std::uint32_t antennaMask = 0;  ///< bit 0 chain A, bit 1 chain B
    std::uint32_t m_currChain = 0;  ///< 1 chain A, 2 chain B, 3 both
    std::uint32_t reserved = 0;
    std::uint32_t m_Bandwidth = 0;  ///< 0 is 20 MHz, 1 is 40, 2 is 80, 3 is 160, 4 is 320
    std::uint32_t secondBandwidth = 0;
    std::uint64_t further = 0;
    std::uint32_t antennaSelection = 0;
    std::array<std::uint32_t, 25> rest{};
};
static_assert(sizeof(RxConfig) == 144);

/// How the capture engine of the radio is fed.
struct AdcConfig {
    std::uint64_t chainMode = 0;  ///< 2 for one chain, 3 for two
    std::uint32_t word0 = 0;
    std::uint32_t word1 = 0;
    std::uint8_t chainAEnable = 0;
    std::uint8_t chainBEnable = 0;
    std::uint8_t chainCEnable = 0;
    std::uint32_t word2 = 0;
    std::uint64_t last = 0;
    std::array<std::uint64_t, 4> rest{};
};
static_assert(sizeof(AdcConfig) == 64);

/// Manual gain of one chain.
struct ChainGain {
    std::uint32_t gainIndex = 0;
    std::uint32_t internalGain = 0;
    std::uint32_t externalGain = 0;
    std::uint32_t preLna = 0;
    double fine = 0.0;
};

/// Manual gain record, layout A.
struct GainConfig {
    std::uint32_t enable = 0;
    std::uint32_t reserved = 0;
    std::array<ChainGain, 3> chains{};  ///< A, B, C
    std::uint64_t last = 0;
};

/// Layout B: enable; coarse, fine, internal gain, pre-LNA, fine value of chain A; the same of chain B; last.
using GainConfigB = std::array<std::uint32_t, 12>;
/// Layout C: 0 enable; 2 coarse, 3 fine, 4 internal gain, 5 pre-LNA, 7 fine value of chain A; 8, 9, 10, 11, 13 the same
/// of chain B; 14 last.
using GainConfigC = std::array<std::uint32_t, 15>;

/// Read record: its first three words in the older two capture classes, all four in the newer.
using AdcReadRequest = std::array<std::uint32_t, 4>;
/// Capture records of each generation, as 32-bit words.
using CaptureDescriptorA = std::array<std::uint32_t, 11>;
using CaptureDescriptorB = std::array<std::uint32_t, 12>;
using CaptureDescriptorC = std::array<std::uint32_t, 18>;
using CaptureDescriptorD = std::array<std::uint32_t, 18>;
using CaptureSource = std::array<std::uint32_t, 14>;
using CaptureState = std::array<std::uint64_t, 3>;
using PrepareRecordA = std::array<std::uint32_t, 1>;
using PrepareRecordB = std::array<std::uint32_t, 15>;

/// Bytes of the metadata that the newer capture reads fill.
constexpr std::size_t CaptureMetadataBytes = 393232;

/// What the adapter is.
class IDeviceInfo {
public:
    virtual ~IDeviceInfo() = default;
    /// Reads the device's limits again, after a change of the country.
    virtual void Reload() = 0;
    virtual std::set<std::uint32_t> GetSupportedBands() = 0;
    /// Bit 0 chain A, bit 1 chain B.
    virtual std::uint32_t GetAntennaMask() = 0;
};

/// The low-level receiver: set-up and capture.
class IAdcCommands {
public:
    virtual ~IAdcCommands() = default;
    virtual void ConfigTxRx(const RxConfig* config) = 0;
    virtual void StartStopAllPeriodicCalibrations() = 0;
    virtual void SetCaptureMode(bool on) = 0;
    virtual void PrepareCaptureA(const PrepareRecordA& record) = 0;
    virtual void PrepareCaptureB(const PrepareRecordB& record) = 0;
    virtual void SetManualGainA(const GainConfig& gain) = 0;
    virtual void SetManualGainB(const GainConfigB& gain) = 0;
    virtual void SetManualGainC(const GainConfigC& gain) = 0;

    /// Samples that a read fills into each vector.
    virtual std::uint32_t GetCaptureLength() = 0;
    /// The low half of the second word says the state.
    virtual void GetCaptureState(CaptureState& out) = 0;
    virtual void SetCaptureDescriptorA(const CaptureDescriptorA& descriptor) = 0;
    virtual void SetCaptureDescriptorB(const CaptureDescriptorB& descriptor) = 0;
    virtual void SetCaptureDescriptorC(const CaptureDescriptorC& descriptor) = 0;
    virtual void SetCaptureDescriptorD(const CaptureDescriptorD& descriptor) = 0;
    virtual void SetCaptureSource(const CaptureSource& record) = 0;
    /// Captures and fills `i[c]` and `q[c]` with ADC codes for each chain c of the capture, the first selected chain
    /// first; the vectors hold GetCaptureLength() doubles. Those of the first ChainsReadWhole() chains arrive with
    /// anything, the others zeroed.
    /// @return true on success
    virtual bool ReadCapture(const AdcReadRequest& request, double** i, double** q) = 0;
    /// @param metadata `CaptureMetadataBytes` bytes
    virtual bool ReadCaptureEx(const AdcReadRequest& request, double** i, double** q, std::uint8_t* metadata) = 0;

    /// 1, 2 or another number, in the low byte.
    virtual std::uint32_t GetBoardSku() = 0;
    virtual void GetUcodeVersion(std::array<std::uint32_t, 2>& out) = 0;
    /// Fills a zero-terminated text.
    virtual void GetDriverVersion(std::array<char, 256>& out) = 0;
    virtual void GetUscVersion(std::array<std::uint32_t, 4>& out) = 0;
    virtual void GetSVDriverVersion(std::array<std::uint32_t, 4>& out) = 0;

    /// Chains whose vectors the next read writes to their end, with samples and zeros behind them, or with zeros alone
    /// when it captures nothing. A radio that knows nothing of this writes none so.
    virtual unsigned ChainsReadWhole() { return 0; }
};

/// The adapter.
class IWifiCommands {
public:
    virtual ~IWifiCommands() = default;
    virtual bool IsConnected() = 0;
    virtual std::uint32_t GetCardType() = 0;
    virtual std::uint32_t GetHwType() = 0;
    virtual std::uint32_t GetPlatformDeviceId() = 0;
    virtual std::uint32_t GetVendorId() = 0;
    virtual std::uint32_t GetSubsystemId() = 0;
    virtual std::uint32_t GetRevisionId() = 0;
    /// Not owned by the caller; lives as long as the adapter.
    virtual IAdcCommands* GetAdcObject() = 0;
    virtual IDeviceInfo* GetDeviceInfo() = 0;
    /// Selects the MAC for the band.
    virtual void SetLmac(std::uint32_t band) = 0;
    virtual void ResetAdapter() = 0;
};

/// The adapter's non-volatile memory.
class NvmCommands {
public:
    virtual ~NvmCommands() = default;
    virtual void SetMetadata(std::string document) = 0;
    virtual void GetMacAddress(std::string& out) = 0;
    virtual bool IsBandEnabled(std::uint32_t band) = 0;
    virtual bool IsChannelSupported(std::uint32_t channel, std::uint32_t bandwidth, std::uint32_t band) = 0;
    /// @param code first letter in the high byte, second in the low byte
    virtual void SetMcc(std::uint16_t code, bool apply) = 0;
    virtual void ApplyMcc() = 0;
};

}  // namespace quayCommand

#if defined(QuayCommands_EXPORTS)
#define QUAY_COMMANDS_API __attribute__((visibility("default")))
#else
#define QUAY_COMMANDS_API
#endif

/// The one way to an adapter. The default adapter is there at once; RadioSetup.h describes another one.
class QUAY_COMMANDS_API CommandFactory {
public:
    static CommandFactory& GetInstance();
    virtual quayCommand::IWifiCommands* getWifiInstance() = 0;
    virtual quayCommand::NvmCommands* getNvmInstance() = 0;

protected:
    virtual ~CommandFactory() = default;
};
