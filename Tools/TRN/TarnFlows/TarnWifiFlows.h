// The flow object: everything that needs the radio, with plain text answers. Each operation logs, checks, calls a
// collaborator and answers; the definitions stand in TarnWifiFlows-<Subject>.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CSampleCommon.h"
#include "Device/ChannelDatabase.h"
#include "HardwareTypes.h"
#include "ITrellisPlugin.h"
#include "QuayCommands.h"
#include "Stores/FreqPowerStore.h"
#include "Stores/GainFile.h"
#include "Stores/Snapshot.h"
#include "TarnCommonFlows.h"
#include "Vesper/VesperRun.h"
#include "Vesper/VesperSettings.h"
#include "Vesper/VesperStore.h"
#include "Vesper/Workload.h"

namespace quayCommand {
struct TxConfig;
}

/// Size class of the board, as the newer gain tables need it.
enum AshBayBoardSKU : std::uint32_t {
    eASH_BAY_BOARD_SKU_2230 = 0,
    eASH_BAY_BOARD_SKU_1216 = 1,
    eASH_BAY_BOARD_SKU_OTHER = 2
};

/// Bands are 0 (2.4 GHz), 1 (5.2 GHz), 2 (6-7 GHz); bandwidths 0 to 4 (20, 40, 80, 160, 320 MHz); chains 1, 2, 3
/// ("A", "B", "AB").
/// An operation that needs the radio, the engine or the capture object while it is missing throws Common::Exception.
/// Thread: Init, RunCommand and DeInit on one thread at a time; RunCommand is not re-entrant.
class TarnWifiFlows : public TarnCommonFlows, public ITrellisPlugin {
public:
    /// @param host  gets messages; not owned, may be null
    explicit TarnWifiFlows(IHostOutput* host);
    ~TarnWifiFlows() override;

    void Init() override;
    std::int32_t RunCommand(std::string& line, std::string& output, std::string& error, bool plainOutput) override;
    void DeInit() override;
    LumenSpectrumAnalyzer::CLmnSA* GetLmnSA() override { return m_lmnSA.get(); }

    virtual bool IsBandSupportedForDevice(ChannelTableId tableId);
    virtual void Output(std::string text);
    /// One message of the front-end variant; nothing here.
    virtual void OutputObject(std::string type, std::string data);
    virtual void OutputError(std::string text);
    /// Ids, versions and supported channels as lines.
    virtual void SupportedConfigToString();
    virtual void InitChannelListDataBase();
    virtual void InitChannelListPerBw(std::vector<ChannelRow> rows, const quayCommand::RxConfig& rxConfig,
                                      ChannelTableId tableId);
    /// Does nothing: the tool doesn't transmit.
    virtual void CheckChannelRates(const quayCommand::TxConfig& txConfig);
    virtual void GuiToHWAnts(quayCommand::RxConfig& rxConfig, quayCommand::AdcConfig& adcConfig);
    /// Band 2.4, 20 MHz, channel 1, chain A, the default gain file; brings the radio up.
    /// @return false when the receiver could not be set up
    virtual bool SetDefaultConfigParamsAndGain();
    virtual void SetGainFromFile();
    virtual bool is2RxChainsCard();
    virtual bool ConfigTxRxAdcConditioned();
    /// Sets the receiver up and initiates the capture object, one user of the process at a time.
    virtual bool ConfigTxRxAdc();
    virtual void Initiate(quayCommand::AdcConfig adcConfig);
    virtual void ConfigTxRxFlow();
    /// ConfigTxRxFlow, and once more behind an adapter reset when it throws.
    virtual void ConfigTxRx();
    virtual void SetPowerDeembedding(std::string flag);
    /// "DB,DB,DB": noise floor of each band, -160 to -1 dB.
    virtual void SetNoiseFloor(std::string text);
    virtual void TriggerNow();
    /// Captures and analyses one sweep.
    virtual void ReadSamples();
    virtual void GetComponentsVersions();
    virtual bool SearchGainValueSetGainFromFile();
    /// Centre frequency in MHz.
    virtual double GetChannelInfoByChannel(double channel, std::uint32_t bandwidth, std::uint32_t band);
    virtual std::string BandwidthEnumToValue(std::uint32_t bandwidth);
    virtual std::uint32_t BandwidthValueToEnum(std::int32_t value);
    /// Hands the manual gain to the radio and, unless a gain file rules, to the engine.
    virtual void SetManualGainConfig();
    virtual void ToGainConfigB(quayCommand::GainConfigB& out, const quayCommand::GainConfig& gainConfig);
    virtual void ToGainConfigC(quayCommand::GainConfigC& out, const quayCommand::GainConfig& gainConfig);
    virtual unsigned InternalGainFine(unsigned gain);
    virtual unsigned InternalGainCoarse(unsigned gain);
    /// Names the gain file; an empty path ends its use.
    virtual void SetGainFileLoadingParams(std::string path);
    virtual std::string GetUcodeVersion();
    virtual std::string GetDriverVersion();
    virtual std::string GetUscVersion();
    virtual std::string GetSVDriverVersion();
    virtual void SaveSpectrumByRBW(std::string path);
    virtual void ExportAllFreqPowerData(std::string path);
    virtual void ClearFreqPowerData();
    virtual void ClearChainGainFields();
    virtual void DeleteGainList();
    /// @param windowSize  bins of a slice, 5 to 80
    virtual void FindPeaks(int windowSize);
    /// A line for each chain: frequency in MHz and power in dB of each peak, strongest first.
    virtual void UpdatePeaksData();
    virtual void SavePeaks(std::string path);

    // Snapshots. A path that is a link is refused; a file that can't be written is only logged.
    /// Writes results, settings and stored powers as one table.
    virtual void SaveAll(std::string path);
    /// Brings them back without the radio. The samples of the sweep stay in the file.
    virtual void LoadAll(std::string path);
    // Their steps, through m_savedArrays and m_savedNonArrays.
    virtual void PrepareSavedParams();
    virtual void PrepareSavedParamsNonArrays();
    virtual void LoadNonArraySavedParams();
    virtual void LoadDataFromLumen();
    virtual void LoadDataFromWifiFlows();
    virtual void SerializeData(std::string path);
    virtual void GetSupportedChannels();
    virtual void GetSupportedChains();
    /// Analyses a folder of stored captures into its result.csv.
    virtual void ReadADCSamplesFromFile(std::string folder);
    virtual void ResetFirstRunFlags();
    /// Two letters for the next ReloadMccProfile.
    virtual void SetMccValue(std::string text);
    virtual void ReloadMccProfile();
    virtual AshBayBoardSKU GetAshBayBoardSKU();
    virtual void SetChannel(int channel);
    virtual void SetBandwidth(std::string text);
    virtual void SetBand(std::string text);
    virtual void SetInternalGain(int gain);
    virtual void SetExternalGain(std::string flag);
    virtual void SetPreLnaResistor(std::string flag);
    virtual void SetChain(std::string text);
    virtual void SetSampleRate();
    /// @param rbw  39.0625, 78.125, 156.25 or 312.5 kHz
    virtual void SetRbw(double rbw);
    virtual void SetGainFilename(std::string path);
    virtual void ResetConfig();
    virtual void SetOptions(std::string band, std::string bandwidth, std::string channel, std::string chain);
    virtual void SetGainStatusResponse(std::string text);
    virtual std::int32_t GetChannelIndex(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band);
    virtual std::int32_t GetChannelIndex_802_11(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band);
    virtual std::int32_t GetChannelFromIndex(std::int32_t index, std::uint32_t band, std::uint32_t bandwidth);
    /// Leaves the outputs alone for a line that belongs to no channel.
    virtual void GetChannelFromLineNumber(std::int32_t line, std::uint32_t& band, std::uint32_t& bandwidth,
                                          std::int32_t& channel);
    virtual std::uint32_t ConvertChainStringToU32(std::string chain);
    virtual std::string ConvertChainU32ToString(std::uint32_t chain);

    // The burn-in desense test. Messages go to the host and into the test's log.
    /// The whole test: the workload comes up, every channel and chain is swept, the workload ends.
    virtual void StartVesperTest();
    /// Does nothing: this variant's test can't be paused.
    virtual void ResumeVesperTest();
    virtual void StopVesperTest();
    virtual void StartBurnInTest();
    virtual void StopBurnInTest();
    /// 1 to 100.
    virtual void SetVesperIterations(int value);
    /// 1 to the number of iterations; 1 also clears max hold and average before the next capture.
    virtual void SetCurrentVesperIteration(int value);
    virtual void ClearVesperData();
    /// "A" or "B", "AB", "A->B".
    virtual void SetChainMode(std::string text);
    /// The summary, a line for each channel.
    virtual void ExportVesperResult(std::string path);
    /// Average and maximum of every in-band bin.
    virtual void DumpVesperData(std::string path);
    /// "true" or "false", whatever the case of the letters.
    virtual void DisableBurnInTest(std::string flag);
    virtual void SetBitcfgFile(std::string name);
    /// Seconds, 0 to 100.
    virtual void SetVesperDelay(int seconds);
    virtual void GetChannelGraphDataForVesper(std::string text);
    virtual void SetVesperSettingsFromConfigFile(std::string path);
    /// Files the engine's last sweep under the current channel. @throws Common::Exception whatever went wrong
    virtual void UpdateSpectrumVesper();
    virtual void StoreChannelForVesper(const ChainBuffers& averages, const ChainBuffers& maxHolds);
    virtual void AddVesperTestMessage(std::string text);
    virtual void ClearVesperTestMessages();
    virtual void SaveVesperTestMessages(std::string path);
    virtual void CalculateChannelAverageAndPeakForVesper(VesperKey key, std::size_t slot);
    virtual double GetChannelAverageForVesper(VesperKey key, std::string chain);
    virtual double GetChannelPeakForVesper(VesperKey key, std::string chain);
    /// dB above the limit of the key's band.
    virtual double GetDesenseValue(VesperKey key);
    virtual void GetPlatformInfo();
    virtual void DeserializeNonArrayVariables(std::string path);
    virtual void DeserializeDataBuffers(std::string path);
    /// Sizes the engine's buffers for the settings that came back.
    virtual void PrepareLumenBuffers();
    virtual void SaveDataToWifiFlows();
    virtual void SaveDataToLumen();
    virtual void DeleteSavedParams();
    virtual std::size_t GetNumOfChainsForVesper();
    virtual void SetVesperTestInProgress(bool inProgress);

protected:
    // What an operation needs, or a Common::Exception that says what is missing.
    quayCommand::IWifiCommands& Wifi();
    quayCommand::IAdcCommands& Adc();
    quayCommand::NvmCommands& Nvm();
    quayCommand::IDeviceInfo& DeviceInfo();
    WifiAdc::CSampleCommon& Sampler();

    // Steps of a trigger that both variants share.
    /// Puts the adapters that need it into their capture state.
    void PrepareCaptureMode();
    /// Sets the receiver and the gain up and carries out pending clears.
    void PrepareTrigger();
    /// Files the channel power of the last sweep under the current channel.
    void StoreFreqPowerData();

    // Steps of a load that both variants share.
    /// `settings`, then the buffers for them and the results into these. A failure passes behind `undo`; one behind the
    /// settings leaves no results.
    void RestoreFrom(const std::string& path, const std::function<void()>& settings, const std::function<void()>& undo);
    /// Texts of the settings in m_savedNonArrays; nothing behind the last line of a short file.
    /// @throws Common::Exception for a file that can't be read, or that lacks a setting between two others
    std::vector<std::optional<std::string>> SavedTexts(const std::string& path);

    // Steps of the burn-in test that both variants share.
    void WaitVesperDelay();
    /// The delay, a first message, empty stores.
    void OpenVesperTest();
    /// Starts the workload, gives it its time and tells that sampling begins. A test whose workload can't be started is
    /// stopped; the failure goes on.
    void WarmUpVesperTest();
    /// Stops a test whose failure is being handled; what fails here is in the log alone.
    void AbortVesperTest(const char* operation, const char* reason);
    /// Channel and band of the receiver.
    VesperKey CurrentVesperKey() const;

    quayCommand::IWifiCommands* m_wifi = nullptr;  ///< not owned, as the next two
    quayCommand::IAdcCommands* m_adc = nullptr;
    quayCommand::NvmCommands* m_nvm = nullptr;
    std::unique_ptr<LumenSpectrumAnalyzer::CLmnSA> m_lmnSA;
    std::unique_ptr<WifiAdc::CSampleCommon> m_sampler;  ///< points to `m_lmnSA`: released before it
    IHostOutput* m_host;
    std::uint32_t m_cardType = 64;
    std::uint32_t m_hwType = ChannelDatabase::UnknownHardware;
    quayCommand::GainConfig m_gainConfig;
    ChannelFlags m_channelFlags;
    FreqPowerStore m_freqPowerStore;
    ChannelTables m_channelTables;
    quayCommand::RxConfig m_rxConfig;
    quayCommand::AdcConfig m_adcConfig;
    std::array<std::uint8_t, 4> m_adcInitFlags{1, 0, 0, 0};  ///< element 0: the capture object was not yet initiated
    std::uint32_t m_adcInitWord = 0;
    GainList m_gainList;
    std::string m_macAddress;
    bool m_gainFromFileActive = false;
    bool m_isFirstRun = true;       ///< setters apply equal values too
    bool m_firstGainLookup = true;  ///< the next failed look-up reports nothing
    std::string m_chainName;
    std::int32_t m_consecutiveRuns = 0;  ///< triggers since the last ClearFreqPowerData
    std::int32_t m_maxConsecutiveRuns = 4000;
    bool m_plainOutput = false;
    std::string m_mcc;
    bool m_vesperTestInProgress = false;
    SavedArrays m_savedArrays;  ///< this and the next two only live while a snapshot is written or read
    std::vector<SavedValue> m_savedNonArrays;
    std::vector<std::pair<double, double>> m_savedHistRanges;  ///< (minimum, maximum) of each chain
    VesperSettings m_vesper;
    VesperStore m_vesperStore;
    std::vector<std::string> m_vesperMessages;  ///< every message of the test with its time
    Workload m_workload;

private:
    void RegisterKeys();
    void InitLumen();
    void IdentifyPlatform();
    /// Fills the emptied channel lists by what the adapter says.
    void SelectChannels();
    /// Drops what Init made; the entries of the channel tables stay, without rows.
    void Release();

    /// Tokens of `line` to the keys; what no key took goes back into `line` and is an error.
    void RunKeys(std::string& line);

    /// Marks what a new tuning needs: receiver set-up, a clear max hold, and with `average` a clear average.
    void MarkRetuned(bool average);
    void SetInternalGains(std::uint32_t gain);
    /// The manual gain record in the form of this hardware.
    void GiveGainToRadio();
    /// One sweep of the plain variant's test.
    void SweepForVesper(const VesperStep& step);
    std::vector<VesperBand> VesperBands();

    static std::string SnapshotText(const std::string& path);
    void KeepRestoredSweep();

    struct OfflineBuffers;
    void AnalyzeAdcFile(const std::string& folder, const std::string& name, OfflineBuffers& buffers);

    SavedArrays m_restoredSweep;  ///< the samples of the snapshot that was loaded last, for one that is saved behind it
};
