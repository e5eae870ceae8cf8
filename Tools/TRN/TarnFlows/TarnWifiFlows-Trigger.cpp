// One measurement: set up, capture, analyse; and the stores and exports that grow from triggers.
#include "OSAL/OSAL.h"
#include "PlainText.h"
#include "Streams/Trace.h"
#include "TarnWifiFlows.h"

using LumenSpectrumAnalyzer::CLmnSA;

void TarnWifiFlows::TriggerNow() {
    TRACE_SCOPE("TarnWifiFlows::TriggerNow");
    ReadSamples();
}

void TarnWifiFlows::PrepareCaptureMode() {
    switch (RadioFacts::HardwareOf(m_hwType).preparation) {
        case RadioFacts::Preparation::A:
            Adc().PrepareCaptureA({2});
            break;
        case RadioFacts::Preparation::B:
            Adc().PrepareCaptureB({0, 2});
            break;
        case RadioFacts::Preparation::None:
            break;
    }
}

void TarnWifiFlows::PrepareTrigger() {
    ConfigTxRxAdc();  // a failure is in the log; the capture will show it
    SetManualGainConfig();
    if (m_clearMaxHoldPending) {
        ClearMaxHold();
        m_clearMaxHoldPending = false;
    }
    if (m_clearAveragePending) {
        ClearAverage();
        m_clearAveragePending = false;
    }
    {
        const SyncObjectsOSAL::Entered entered(m_configLock);
        m_adcInitFlags[0] = 0;
    }
    m_isFirstRun = false;
}

void TarnWifiFlows::ReadSamples() {
    TRACE_SCOPE("TarnWifiFlows::ReadSamples");
    Adc().SetCaptureMode(true);
    PrepareCaptureMode();
    PrepareTrigger();
    {
        const SyncObjectsOSAL::Locked locked(*m_sampleLock);
        Sampler().ReadSamples();
        if (!m_vesperTestInProgress) StoreFreqPowerData();
        m_response = PlainText::Sweep(Results().Sweep());
        ++m_consecutiveRuns;
    }
    if (m_vesperTestInProgress) UpdateSpectrumVesper();
    if (m_consecutiveRuns >= m_maxConsecutiveRuns) {
        m_response += "\nMax number of consecutive runs is reached, reseting data.\n";
        ClearFreqPowerData();
    }
    Adc().SetCaptureMode(false);
}

// The frequency-power store.

void TarnWifiFlows::StoreFreqPowerData() {
    TRACE_SCOPE("TarnWifiFlows::StoreFreqPowerData");
    CLmnSA& engine = Engine();
    const std::uint32_t chain = m_rxConfig.m_currChain;
    const std::uint32_t averaged = engine.m_ChannelAverageCounter[chain == 2 ? 1 : 0];
    if (!FreqPowerStore::IsTriggerDue(m_channelAverageOn, m_maxHoldOn, averaged, engine.m_AverageSweepsVal)) return;
    m_freqPowerStore.Store({static_cast<std::int32_t>(m_rxConfig.m_band), m_rxConfig.m_Bandwidth,
                            static_cast<std::int32_t>(m_rxConfig.m_channel)},
                           {chain, engine.GetChannelPowerPerChain(0), engine.GetChannelPowerPerChain(1), engine.m_RBW,
                            OSAL::FormatLocalTime("%d/%m/%Y %H:%M:%S")});
}

void TarnWifiFlows::ClearFreqPowerData() {
    TRACE_SCOPE("TarnWifiFlows::ClearFreqPowerData");
    m_freqPowerStore.Clear();
    m_consecutiveRuns = 0;
}

void TarnWifiFlows::ExportAllFreqPowerData(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::ExportAllFreqPowerData");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) { m_freqPowerStore.Write(file); });
}

void TarnWifiFlows::SaveSpectrumByRBW(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::SaveSpectrumByRBW");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) { Engine().DumpSpectrumByRBW(file); });
}

// Peaks.

void TarnWifiFlows::FindPeaks(int windowSize) {
    TRACE_SCOPE("TarnWifiFlows::FindPeaks");
    if (windowSize < 5 || windowSize > 80) {
        const std::string message =
            Common::Format("Invalid window size input: ${1}. window size must be a whole number from 5 to 80") %
            windowSize;
        TRACE(Streams::TraceError, message);
        throw CSvMsgException(message.c_str(), __FILE__, __LINE__, traceFunctionName);
    }
    CLmnSA& engine = Engine();
    engine.m_WindowSize = windowSize;
    engine.FindMaxPoints();
}

void TarnWifiFlows::UpdatePeaksData() {
    TRACE_SCOPE("TarnWifiFlows::UpdatePeaksData");
    AnswerLines(traceFunctionName, "Failed updating peaks data",
                [](const Readouts& results) { return PlainText::Peaks(results.Peaks()); });
}

void TarnWifiFlows::SavePeaks(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::SavePeaks");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) { Engine().DumpPeaks(file); });
}
