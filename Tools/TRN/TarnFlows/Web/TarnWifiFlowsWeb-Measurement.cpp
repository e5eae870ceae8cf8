// One capture and what the engine made of it, as messages.
#include <optional>

#include "Caught.h"
#include "Streams/Trace.h"
#include "Web/JsonText.h"
#include "Web/TarnWifiFlowsWeb.h"

using Streams::TraceInfo;

void TarnWifiFlowsWeb::TriggerNow() {
    TRACE_SCOPE("TarnWifiFlowsWeb::TriggerNow");
    m_vesperTestInProgress ? ReadSamplesVesper() : ReadSamples();
}

void TarnWifiFlowsWeb::ReadSamples() {
    TRACE_SCOPE("TarnWifiFlowsWeb::ReadSamples");
    if (m_plainOutput) return TarnWifiFlows::ReadSamples();
    Adc().SetCaptureMode(true);
    // The records of the newest generation are the base class's affair alone.
    if (RadioFacts::HardwareOf(m_hwType).preparation == RadioFacts::Preparation::A) PrepareCaptureMode();
    PrepareTrigger();
    std::string sweep;
    {
        const SyncObjectsOSAL::Locked locked(*m_sampleLock);
        Sampler().ReadSamples();
        StoreFreqPowerData();
        sweep = JsonText::Sweep(Results().Sweep());
    }
    Send(traceFunctionName, "Trigger Response", std::move(sweep));
    UpdateSpectrum();
    UpdateIQ();
    UpdateHistogram();
    Adc().SetCaptureMode(false);
}

void TarnWifiFlowsWeb::GetPowerByChain(std::string chain) {
    TRACE_SCOPE("TarnWifiFlowsWeb::GetPowerByChain");
    if (m_plainOutput) return TarnWifiFlows::GetPowerByChain(chain);
    TRACE(TraceInfo, Common::Format("Chain selected: ${1}") % chain);
    const double power = Results().ChannelPower(chain);
    Send(traceFunctionName, "Power Per Chain",
         JsonText::Object({{"chain", chain}, {"power", JsonText::Number(power)}}));
    TRACE(TraceInfo, Common::Format("power on chain ${1} is ${2}\n") % chain % power);
}

void TarnWifiFlowsWeb::UpdateSpectrum() {
    TRACE_SCOPE("TarnWifiFlowsWeb::UpdateSpectrum");
    if (m_plainOutput) return TarnWifiFlows::UpdateSpectrum();
    constexpr const char* Failure = "Failed updating spectrum";
    try {
        if (ConvertChainStringToU32(m_chainName) == 3) {
            GetPowerByChain("A");
            GetPowerByChain("B");
        } else {
            GetPowerByChain(m_chainName);
        }
        const Readouts results = Results();
        const ChainBuffers spectrum = results.Spectrum();
        std::optional<ChainBuffers> average, maxHold;
        if (m_channelAverageOn) average = results.ChannelAverage();
        if (m_maxHoldOn) maxHold = results.MaxHold();
        Send(traceFunctionName, "Spectrum Data",
             JsonText::Spectrum(m_chainName, spectrum, average ? &*average : nullptr, maxHold ? &*maxHold : nullptr));
    } catch (...) {
        if (!m_vesperTestInProgress) return ReportFailure(traceFunctionName, Failure);
        const Common::Caught dropped;
        Streams::ThrowLogged(traceFunctionName, Failure, TraceInfo);
    }
}

void TarnWifiFlowsWeb::UpdateChannelAverage() {
    TRACE_SCOPE("TarnWifiFlowsWeb::UpdateChannelAverage");
    if (m_plainOutput) return TarnWifiFlows::UpdateChannelAverage();
    try {
        Send(traceFunctionName, "Spectrum Data Average",
             JsonText::ChannelAverage(m_chainName, Results().ChannelAverage()));
    } catch (...) {
        ReportFailure(traceFunctionName, "Failed updating MaxHold");  // the front-end's text for the average
    }
}

void TarnWifiFlowsWeb::UpdateIQ() {
    TRACE_SCOPE("TarnWifiFlowsWeb::UpdateIQ");
    if (m_plainOutput) return TarnWifiFlows::UpdateIQ();
    try {
        Send(traceFunctionName, "IQ Amplitude Data", JsonText::IQ(m_chainName, Results().IQ()));
    } catch (...) {
        ReportFailure(traceFunctionName, "Failed updating IQ");
    }
}

void TarnWifiFlowsWeb::UpdateHistogram() {
    TRACE_SCOPE("TarnWifiFlowsWeb::UpdateHistogram");
    if (m_plainOutput) return TarnWifiFlows::UpdateHistogram();
    try {
        Send(traceFunctionName, "Histogram Data", JsonText::Histogram(m_chainName, Results().Histogram()));
    } catch (...) {
        ReportFailure(traceFunctionName, "Failed updating Histogram");
    }
}

void TarnWifiFlowsWeb::UpdatePeaksData() {
    TRACE_SCOPE("TarnWifiFlowsWeb::UpdatePeaksData");
    if (m_plainOutput) return TarnWifiFlows::UpdatePeaksData();
    try {
        Send(traceFunctionName, "Maximum Peaks Data", JsonText::Peaks(m_chainName, Results().Peaks()));
    } catch (...) {
        ReportFailure(traceFunctionName, "Failed updating peaks data");
    }
}
