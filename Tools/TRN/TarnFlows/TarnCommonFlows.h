// The flows that need only the spectrum engine: its switches, its results as text, its file exports.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Frame/Application.h"
#include "LumenSA.h"
#include "OSAL/Locks.h"
#include "Readouts.h"

/// Answers go to `m_response`; failures are exceptions unless an operation says otherwise.
/// Thread: one thread at a time.
class TarnCommonFlows : public Common::Application {
public:
    TarnCommonFlows();
    ~TarnCommonFlows() override;
    void OnTerminate(std::int32_t) override {}

    /// Registers the keys of this class.
    virtual void Init();
    /// Null before Init and after DeInit.
    virtual LumenSpectrumAnalyzer::CLmnSA* GetLmnSA() = 0;
    /// Sweeps of one averaging run, 1 to 100.
    virtual void SetChannelAverageSweepVal(int value);
    /// "true" or "false", here and in the next three.
    virtual void SetMaxHold(std::string flag);
    virtual void SetHistogram(std::string flag);
    virtual void SetFrequencyCompensation(std::string flag);
    virtual void SetChannelAverage(std::string flag);
    /// Appends "true" or "false" to the answer.
    virtual void GetChannelAverage();
    /// "N,N,N": sweeps that each chain's average already holds, 0 to 99.
    virtual void SetChannelAverageCounter(std::string text);

    // Read-outs: a line of numbers for each chain. A failure of any kind answers "Failed updating ...".
    /// dB in each bin.
    virtual void UpdateSpectrum();
    virtual void UpdateMaxHold();
    virtual void ClearMaxHold();
    virtual void ClearAverage();
    virtual void UpdateChannelAverage();
    /// ADC codes: a line of I and a line of Q for each chain.
    virtual void UpdateIQ();
    /// Counts of I and Q together, of I, of Q, then minimum and maximum: four lines for each chain.
    virtual void UpdateHistogram();

    /// Channel power in dB of chain "A" or "B". A sweep of one chain answers its power for either.
    virtual void GetPowerByChain(std::string chain);

    // Exports. A path that is a link is refused.
    virtual void SaveSpectrum(std::string path);
    virtual void SaveMaxHold(std::string path);
    virtual void SaveIQ(std::string path);

    virtual std::string GetAppVersion();

protected:
    /// The engine, or a Common::Exception that says there is none.
    LumenSpectrumAnalyzer::CLmnSA& Engine();
    /// Its results; the same exception without one.
    Readouts Results() { return Readouts(Engine()); }

    /// Runs `write` with a file lock around it, unless the path is a link.
    /// @throws Common::Exception "File ${1} is a link"
    void ExportToFile(const char* operation, const std::string& path,
                      const std::function<void(const std::string&)>& write);

    /// Answers the lines that `lines` makes of the results; on a failure of any kind `failure`, and nothing is thrown.
    void AnswerLines(const char* operation, const char* failure,
                     const std::function<std::string(const Readouts&)>& lines);

    /// Asks the next trigger to set the receiver up.
    void RequestReceiverSetup();

    std::array<std::uint8_t, 4> m_initFlags{0, 1, 1, 1};  ///< element 0: the receiver must be set up
    bool m_defaultsApplied = true;
    bool m_useGainFile = false;
    std::string m_response;                         ///< text answer of the running command
    Synchronization::CriticalSection m_configLock;  ///< guards the init flags; never held across a radio call
    std::unique_ptr<SyncObjectsOSAL::SemaphoreOSAL> m_sampleLock;  ///< held during a capture and during DeInit
    std::unique_ptr<SyncObjectsOSAL::MutexOSAL> m_fileLock;        ///< held during file exports
    bool m_channelAverageOn = false;
    bool m_maxHoldOn = false;
    bool m_clearMaxHoldPending = true;  ///< clear the max hold before the next capture
    bool m_clearAveragePending = true;  ///< clear the average before the next capture
};
