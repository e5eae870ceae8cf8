// The burn-in desense test: the workload runs, every channel and chain is swept, and the noise of each is held against
// its band's limit.
#include <algorithm>
#include <cctype>

#include "Caught.h"
#include "OSAL/Time.h"
#include "Streams/Trace.h"
#include "Support/FlowText.h"
#include "TarnWifiFlows.h"
#include "Vesper/VesperReports.h"

using Streams::ThrowLogged;
using Streams::TraceError;

// Settings.

void TarnWifiFlows::SetVesperIterations(int value) {
    TRACE_SCOPE("TarnWifiFlows::SetVesperIterations");
    FlowText::CheckRange<int>(value, 1, 100, "number of iterations");
    m_vesper.m_vesperIterations = value;
}

void TarnWifiFlows::SetCurrentVesperIteration(int value) {
    TRACE_SCOPE("TarnWifiFlows::SetCurrentVesperIteration");
    FlowText::CheckRange<int>(value, 1, m_vesper.m_vesperIterations, "current iteration");
    m_vesper.m_vesperCurrentIteration = value;
    if (value != 1) return;
    m_clearMaxHoldPending = true;
    m_clearAveragePending = true;
}

void TarnWifiFlows::SetChainMode(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetChainMode");
    const auto mode = VesperSettings::FindChainMode(text);
    if (!mode) ThrowLogged(traceFunctionName, Common::Format("Chain mode ${1} is not valid") % text);
    m_vesper.m_vesperChainMode = *mode;
}

void TarnWifiFlows::DisableBurnInTest(std::string flag) {
    TRACE_SCOPE("TarnWifiFlows::DisableBurnInTest");
    std::ranges::transform(flag, flag.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    m_vesper.m_burnInDisabled = FlowText::convertFromStringToBool(flag);
}

void TarnWifiFlows::SetBitcfgFile(std::string name) {
    TRACE_SCOPE("TarnWifiFlows::SetBitcfgFile");
    if (name.empty()) ThrowLogged(traceFunctionName, "Filename is empty!");
    m_vesper.m_bitcfgFile = std::move(name);
}

void TarnWifiFlows::SetVesperDelay(int seconds) {
    TRACE_SCOPE("TarnWifiFlows::SetVesperDelay");
    FlowText::CheckRange<int>(seconds, 0, 100, "delay");
    m_vesper.m_vesperDelay = seconds;
}

void TarnWifiFlows::SetVesperSettingsFromConfigFile(std::string) {
    TRACE_SCOPE("TarnWifiFlows::SetVesperSettingsFromConfigFile");
}

// Messages.

void TarnWifiFlows::AddVesperTestMessage(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::AddVesperTestMessage");
    text.insert(0, OSAL::FormatLocalTime("[%H:%M:%S] >> "));
    m_vesperMessages.push_back(text);
    Output(std::move(text));
}

void TarnWifiFlows::ClearVesperTestMessages() {
    TRACE_SCOPE("TarnWifiFlows::ClearVesperTestMessages");
    m_vesperMessages.clear();
}

void TarnWifiFlows::SaveVesperTestMessages(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::SaveVesperTestMessages");
    std::string lines;
    for (const std::string& message : m_vesperMessages)
        lines += message + '\n';
    VesperReports::Write(traceFunctionName, path, lines);
}

// The test.

void TarnWifiFlows::SetVesperTestInProgress(bool inProgress) {
    TRACE_SCOPE("TarnWifiFlows::SetVesperTestInProgress");
    m_vesperTestInProgress = inProgress;
    Engine().SetVesperTestInProgress(inProgress);
}

void TarnWifiFlows::StartBurnInTest() {
    TRACE_SCOPE("TarnWifiFlows::StartBurnInTest");
    m_workload.Start(m_vesper.m_bitcfgFile, [this](const std::string& text) { AddVesperTestMessage(text); });
}

void TarnWifiFlows::StopBurnInTest() {
    TRACE_SCOPE("TarnWifiFlows::StopBurnInTest");
    m_workload.Stop([this](const std::string& text) { AddVesperTestMessage(text); });
}

void TarnWifiFlows::WaitVesperDelay() {
    if (m_vesper.m_vesperDelay <= 0) return;
    AddVesperTestMessage(Common::Format("Waiting ${1} seconds to start test...") % m_vesper.m_vesperDelay);
    OSAL::SleepMs(static_cast<std::uint32_t>(m_vesper.m_vesperDelay) * 1000);
}

void TarnWifiFlows::OpenVesperTest() {
    ClearVesperTestMessages();
    WaitVesperDelay();
    AddVesperTestMessage("Starting test...");
    SetVesperTestInProgress(true);
    ClearVesperData();
}

void TarnWifiFlows::WarmUpVesperTest() {
    if (!m_vesper.m_burnInDisabled) {
        try {
            StartBurnInTest();
        } catch (...) {
            AbortVesperTest("TarnWifiFlows::StartVesperTest", "failed to start BurnInTest");
            throw;
        }
        AddVesperTestMessage(Common::Format("Waiting ${1} seconds for BurnInTest initialization...") %
                             (m_vesper.m_burnInInitWait / 1000));
        OSAL::SleepMs(static_cast<std::uint32_t>(m_vesper.m_burnInInitWait));
    }
    AddVesperTestMessage("Triggering ADC samples...");
}

void TarnWifiFlows::AbortVesperTest(const char* traceFunctionName, const char* reason) {
    TRACE(TraceError, Common::Format("Aborting Vesper test... (${1})") % reason);
    AddVesperTestMessage("Aborting test...");
    Common::RunCaught([this] { StopVesperTest(); },
                      [&](const Common::Caught& caught) {
                          TRACE(TraceError, caught.TextOr("unknown exception"));
                          m_workload.End();
                      });
    TRACE(TraceError, "Vesper test was aborted");
}

std::vector<VesperBand> TarnWifiFlows::VesperBands() {
    std::vector<VesperBand> bands;
    for (const std::uint32_t band : DeviceInfo().GetSupportedBands()) {
        const auto tableId = ChannelDatabase::FindTable(band, 0);
        const auto table = tableId ? m_channelTables.find(*tableId) : m_channelTables.end();
        if (table != m_channelTables.end()) bands.push_back({band, table->second});
    }
    return bands;
}

void TarnWifiFlows::SweepForVesper(const VesperStep& step) {
    m_vesper.m_vesperCurrentIteration = step.iteration;
    SetBand(std::string(RadioFacts::Bands[step.band].name));
    SetBandwidth(m_vesper.m_vesperBandwidth);
    const auto channel = static_cast<std::int32_t>(step.channel.channel);
    SetChannel(channel);
    SetChain(step.chain);
    SetRbw(39.0625);
    SetChannelAverage("true");
    const std::string done = std::to_string(step.iteration - 1);
    std::string counters = done;
    for (int chain = 1; chain < Engine().NumOfRxChains(); ++chain)
        counters += ',' + done;
    SetChannelAverageCounter(counters);
    SetChannelAverageSweepVal(m_vesper.m_vesperIterations);
    SetMaxHold("true");
    AddVesperTestMessage(Common::Format("Sampling channel '${1}' (${2} MHz), chain ${3}, iteration ${4}...") % channel %
                         static_cast<std::int32_t>(step.channel.frequency) % step.chain % step.iteration);
    ReadSamples();
}

void TarnWifiFlows::StartVesperTest() {
    TRACE_SCOPE("TarnWifiFlows::StartVesperTest");
    OpenVesperTest();
    m_vesper.m_vesperCurrentIteration = m_vesper.m_vesperFirstIteration;
    WarmUpVesperTest();
    try {
        RunVesperSteps(m_vesper, VesperBands(), [this](const VesperStep& step) { SweepForVesper(step); });
    } catch (...) {
        AbortVesperTest(traceFunctionName, "failed to sample");
        throw;
    }
    StopVesperTest();
    m_response = "Vesper test was finished successfully.";
}

void TarnWifiFlows::ResumeVesperTest() {
    TRACE_SCOPE("TarnWifiFlows::ResumeVesperTest");
}

void TarnWifiFlows::StopVesperTest() {
    TRACE_SCOPE("TarnWifiFlows::StopVesperTest");
    SetVesperTestInProgress(false);
    if (!m_vesper.m_burnInDisabled) StopBurnInTest();
    AddVesperTestMessage("Test stopped.");
}

// Results.

VesperKey TarnWifiFlows::CurrentVesperKey() const {
    return {static_cast<std::int32_t>(m_rxConfig.m_channel), m_rxConfig.m_band};
}

void TarnWifiFlows::UpdateSpectrumVesper() {
    TRACE_SCOPE("TarnWifiFlows::UpdateSpectrumVesper");
    try {
        const Readouts results = Results();
        StoreChannelForVesper(results.ChannelAverage(), results.MaxHold());
    } catch (...) {
        const Common::Caught dropped;
        TRACE(TraceError, dropped.TextOr("unknown exception"));
        ThrowLogged(traceFunctionName, "Failed updating Vesper spectrum");
    }
}

void TarnWifiFlows::StoreChannelForVesper(const ChainBuffers& averages, const ChainBuffers& maxHolds) {
    TRACE_SCOPE("TarnWifiFlows::StoreChannelForVesper");
    m_vesperStore.StoreSweep(Engine(), m_vesper, CurrentVesperKey(), averages, maxHolds);
}

void TarnWifiFlows::ClearVesperData() {
    TRACE_SCOPE("TarnWifiFlows::ClearVesperData");
    m_vesperStore.Clear();
}

std::size_t TarnWifiFlows::GetNumOfChainsForVesper() {
    TRACE_SCOPE("TarnWifiFlows::GetNumOfChainsForVesper");
    return VesperStore::SlotsOf(m_vesper, Engine());
}

void TarnWifiFlows::CalculateChannelAverageAndPeakForVesper(VesperKey key, std::size_t slot) {
    TRACE_SCOPE("TarnWifiFlows::CalculateChannelAverageAndPeakForVesper");
    m_vesperStore.CalculateChannelAverageAndPeak(Engine(), m_vesper, key, slot);
}

double TarnWifiFlows::GetChannelAverageForVesper(VesperKey key, std::string chain) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelAverageForVesper");
    return m_vesperStore.ChannelAverage(m_vesper, key, chain);
}

double TarnWifiFlows::GetChannelPeakForVesper(VesperKey key, std::string chain) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelPeakForVesper");
    return m_vesperStore.ChannelPeak(m_vesper, key, chain);
}

double TarnWifiFlows::GetDesenseValue(VesperKey key) {
    TRACE_SCOPE("TarnWifiFlows::GetDesenseValue");
    return m_vesperStore.DesenseValue(m_vesper, key);
}

void TarnWifiFlows::ExportVesperResult(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::ExportVesperResult");
    VesperReports::Write(traceFunctionName, path, VesperReports::Summary(m_vesperStore, m_vesper));
}

void TarnWifiFlows::DumpVesperData(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::DumpVesperData");
    const std::string time = OSAL::FormatLocalTime("%d/%m/%Y %H:%M:%S");
    VesperReports::Write(
        traceFunctionName, path,
        VesperReports::AllBins(m_vesperStore, m_vesper, Engine(), {m_rxConfig.m_Bandwidth, m_chainName, time}));
}

void TarnWifiFlows::GetChannelGraphDataForVesper(std::string) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelGraphDataForVesper");
}
