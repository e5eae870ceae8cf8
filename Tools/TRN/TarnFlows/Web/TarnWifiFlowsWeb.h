// The front-end variant of the flow object: what a front-end asks for is answered in JSON messages. While a line runs
// with plain output, each operation is the base class's, but for those that say otherwise. The definitions stand in
// TarnWifiFlowsWeb-<Subject>.cpp.
#pragma once

#include <functional>

#include "TarnWifiFlows.h"

class TarnWifiFlowsWeb : public TarnWifiFlows {
public:
    using TarnWifiFlows::TarnWifiFlows;
    ~TarnWifiFlowsWeb() override = default;

    /// Hands the host one message and empties the text answer.
    /// @param type  goes out as it stands, as does `data`, which must be a JSON text
    void OutputObject(std::string type, std::string data) override;

    // Measurement. A failure of an Update operation goes to the host's OutputError, whatever it is; nothing is thrown.
    /// "Power Per Chain" for each chain of the selection, then "Spectrum Data" with the average and the max hold where
    /// they are on. While the burn-in test runs, a failure is thrown as a Common::Exception instead.
    void UpdateSpectrum() override;
    void UpdateChannelAverage() override;
    void UpdateIQ() override;
    void UpdateHistogram() override;
    void UpdatePeaksData() override;
    /// Any text but "B" is the engine's first chain, under that text.
    void GetPowerByChain(std::string chain) override;
    void TriggerNow() override;
    /// "Trigger Response", then spectrum, I and Q, and histogram. Doesn't count runs.
    void ReadSamples() override;

    // Settings.
    void SetGainFromFile() override;
    void SetGainStatusResponse(std::string text) override;
    /// Two values before the first capture, one for each of the device's bands behind it; no range is checked.
    void SetNoiseFloor(std::string text) override;
    /// Tells the new channels, then the outcome; a refused country is an answer, not an exception.
    void ReloadMccProfile() override;
    void GetSupportedChannels() override;
    void GetSupportedChains() override;
    void GetPlatformInfo() override;

    // Files. The exports take no file lock, and say that the file is saved whatever became of it.
    void SaveSpectrum(std::string path) override;
    void SaveMaxHold(std::string path) override;
    void SaveIQ(std::string path) override;
    void SaveSpectrumByRBW(std::string path) override;
    void ExportAllFreqPowerData(std::string path) override;
    /// The base class's analysis with either output; its end is told to a front-end.
    void ReadADCSamplesFromFile(std::string folder) override;
    /// "PATH,VALUE,...": the file and the front-end's fourteen numbers, which come back from LoadAll as texts.
    void SaveAll(std::string argument) override;
    /// The settings return through their setters, so that the next capture is tuned by them; then tells them and the
    /// power table. @throws Common::Exception "Failed to load settings: ..." for any other Common::Exception
    void LoadAll(std::string path) override;
    void PrepareSavedParamsNonArrays() override;
    /// The whole frequency-power store, last power of each channel and chain.
    virtual void SendPowerTableData();

    using TarnWifiFlows::LoadNonArraySavedParams;
    virtual void LoadNonArraySavedParams(std::vector<std::string> frontendValues);
    /// The body of "Load All Response".
    virtual std::string SavedParamsNonArraysToRespStr(std::vector<std::string> frontendValues);
    /// @return the front-end's values, empty where the file has none
    virtual std::vector<std::string> DeserializeNonArrayAndFrontendVariables(std::string path);

    // The burn-in desense test: the front-end drives it with keys, and each trigger is a sweep of it.
    /// Prepares the test and asks the front-end for its triggers.
    void StartVesperTest() override;
    /// Starts the workload again and asks for further triggers; what was measured stays.
    void ResumeVesperTest() override;
    void StopVesperTest() override;
    void ExportVesperResult(std::string path) override;
    void DumpVesperData(std::string path) override;
    /// "CHANNEL,BAND": the bins of that channel.
    void GetChannelGraphDataForVesper(std::string text) override;
    /// Sets what the file says and tells it to the front-end; the settings before one that is refused stay changed.
    void SetVesperSettingsFromConfigFile(std::string path) override;
    void AddVesperTestMessage(std::string text) override;
    void ClearVesperTestMessages() override;
    void SaveVesperTestMessages(std::string path) override;
    virtual void ReadSamplesVesper();
    /// The supported channels as an array's objects; of each band only the channels that its list names, split by ";".
    virtual std::string GetChannelsJsonFromStr(std::string lowBand, std::string highBand, std::string ultraHighBand);
    virtual std::string GetChainModeStr();

protected:
    /// A band's name as messages write it, in GHz without the unit; empty for another number.
    static std::string BandText(std::uint32_t band);
    /// OutputObject between the two trace lines that frame each message.
    void Send(const char* operation, const std::string& type, std::string data);

private:
    /// The objects of the supported bands, without the array's brackets.
    /// @param isListed  whether a channel of a band goes out
    std::string BandObjects(const std::function<bool(std::uint32_t band, std::int32_t channel)>& isListed);
    /// Tells the last sweep's spurs and files them.
    void CheckSpursForVesper();
    /// The current channel's result as members of an object, empty before its last iteration.
    std::string ResultForVesper();
    /// In a catch block of an Update operation: ends the exception, logs and reports `failure`.
    void ReportFailure(const char* operation, const char* failure);

    void RestoreSetting(std::size_t place, const std::vector<std::optional<std::string>>& texts);

    std::uint32_t m_frontendFieldCount = 14;
    std::uint32_t m_firstRunNoiseFloors = 2;  ///< values of "-noise_floor" before the first capture
};
