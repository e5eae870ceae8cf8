// Bringing the radio into receive state, and the default configuration.
#include <exception>

#include "Caught.h"
#include "OSAL/OSAL.h"
#include "Streams/Trace.h"
#include "Support/DroppedFailure.h"
#include "TarnWifiFlows.h"

using Streams::TraceError;
using Streams::TraceInfo;

namespace {

/// One user of the process sets the radio up at a time; kept to the end of the process.
SyncObjectsOSAL::MutexOSAL& RadioMutex() {
    static SyncObjectsOSAL::MutexOSAL mutex;
    return mutex;
}

/// A reset that an exception ends has written some settings and not told the receiver: it forgets them all, so that no
/// setter behind it takes a setting for applied.
class HalfDoneReset {
public:
    explicit HalfDoneReset(bool& isFirstRun) : m_isFirstRun(isFirstRun) {}
    ~HalfDoneReset() {
        if (std::uncaught_exceptions() > m_exceptions) m_isFirstRun = true;
    }
    HalfDoneReset(const HalfDoneReset&) = delete;
    HalfDoneReset& operator=(const HalfDoneReset&) = delete;

private:
    bool& m_isFirstRun;
    const int m_exceptions = std::uncaught_exceptions();
};

constexpr const char* DefaultGainFile = "GainCSV.csv";

}  // namespace

void TarnWifiFlows::ConfigTxRxFlow() {
    TRACE_SCOPE("TarnWifiFlows::ConfigTxRxFlow");
    TRACE(TraceInfo, "Before calling SetLmac...");
    Wifi().SetLmac(m_rxConfig.m_band);
    TRACE(TraceInfo, "After calling SetLmac...\nBefore calling ConfigTxRx...");
    Adc().ConfigTxRx(&m_rxConfig);
    TRACE(TraceInfo, "After calling ConfigTxRx...\nBefore calling StartStopAllPeriodicCalibrations...");
    Adc().StartStopAllPeriodicCalibrations();
    TRACE(TraceInfo, "After calling StartStopAllPeriodicCalibrations...");
}

void TarnWifiFlows::ConfigTxRx() {
    TRACE_SCOPE("TarnWifiFlows::ConfigTxRx");
    try {
        ConfigTxRxFlow();
        return;
    } catch (...) {
        const Common::Caught dropped;
        TRACE(TraceInfo, dropped.TextOr("unknown exception"));
    }
    // Failures of the recovery leave the receiver in an unknown state, which the capture will show.
    if (const auto reason = DroppedFailure([this] { Wifi().ResetAdapter(); })) TRACE(TraceInfo, *reason);
    if (const auto reason = DroppedFailure([this] { ConfigTxRxFlow(); })) {
        TRACE(TraceError, "ConfigTxRxFlow failed");
        TRACE(TraceInfo, *reason);
    }
}

void TarnWifiFlows::Initiate(quayCommand::AdcConfig adcConfig) {
    TRACE_SCOPE("TarnWifiFlows::Initiate");
    Sampler().Initiate(adcConfig, m_rxConfig);
}

bool TarnWifiFlows::ConfigTxRxAdc() {
    TRACE_SCOPE("TarnWifiFlows::ConfigTxRxAdc");
    const SyncObjectsOSAL::Locked locked(RadioMutex());
    const auto reason = DroppedFailure([this] {
        ConfigTxRx();
        TRACE(TraceInfo, Common::Format("Initiate -  chain A = ${1}, chain B = ${2}, chain C = ${3}") %
                             m_adcConfig.chainAEnable % m_adcConfig.chainBEnable % m_adcConfig.chainCEnable);
        Initiate(m_adcConfig);
        const SyncObjectsOSAL::Entered entered(m_configLock);
        m_adcInitFlags[0] = 0;
    });
    if (reason) {
        TRACE(TraceError, *reason);
        return false;
    }
    return true;
}

bool TarnWifiFlows::ConfigTxRxAdcConditioned() {
    TRACE_SCOPE("TarnWifiFlows::ConfigTxRxAdcConditioned");
    {
        const SyncObjectsOSAL::Entered entered(m_configLock);
        if (m_initFlags[0] == 0) return true;
        TRACE(TraceInfo, "Updating init flags");
        m_adcInitFlags = m_initFlags;
        m_adcInitWord = 0;
    }
    if (ConfigTxRxAdc()) return true;
    TRACE(TraceError, "ConfigTxRxAdc() failed");
    return false;
}

bool TarnWifiFlows::SetDefaultConfigParamsAndGain() {
    TRACE_SCOPE("TarnWifiFlows::SetDefaultConfigParamsAndGain");
    const HalfDoneReset halfDone(m_isFirstRun);
    m_rxConfig.m_band = 0;
    m_rxConfig.mode = 13;
    m_rxConfig.m_currChain = 1;
    m_rxConfig.antennaMask = 1;  // SetChain leaves it alone when the chain is set already
    SetChain("A");
    m_adcConfig.chainAEnable = 1;
    m_adcConfig.chainBEnable = 0;
    m_adcConfig.chainCEnable = 0;
    GuiToHWAnts(m_rxConfig, m_adcConfig);
    SetBand("2.4");
    SetBandwidth("20");
    m_rxConfig.further = 0;
    InitChannelListDataBase();
    m_rxConfig.m_channel = 1;
    SetChannel(1);  // needs the lists and the bandwidth
    m_rxConfig.m_band = 0;
    m_adcConfig.chainMode = 2;
    m_adcConfig.word0 = 0;
    m_adcConfig.word1 = 0;
    m_adcConfig.word2 = 0;
    m_adcConfig.last = ~std::uint64_t{0};
    SetSampleRate();
    if (!ConfigTxRxAdcConditioned()) {
        TRACE(TraceError, "ConfigTxRxAdcConditioned() failed");
        return false;
    }
    std::string path;
    OSAL::GetModuleDirectory(path);
    SetGainFileLoadingParams(path + DefaultGainFile);  // without the file the manual gain goes on
    const SyncObjectsOSAL::Entered entered(m_configLock);
    m_defaultsApplied = true;
    return true;
}

void TarnWifiFlows::ResetConfig() {
    TRACE_SCOPE("TarnWifiFlows::ResetConfig");
    SetDefaultConfigParamsAndGain();
}
