#include "TarnCommonFlows.h"

#include "Caught.h"
#include "OSAL/OSAL.h"
#include "PlainText.h"
#include "Streams/Trace.h"
#include "Support/FlowText.h"

using LumenSpectrumAnalyzer::CLmnSA;
using LumenSpectrumAnalyzer::LmnSAProperty;
using Streams::ThrowLogged;
using Streams::TraceInfo;

TarnCommonFlows::TarnCommonFlows()
    : Common::Application("Tarn Analysis Tool", "TRN.03994.23.30.0", "Dec 11 2023"),
      m_sampleLock(std::make_unique<SyncObjectsOSAL::SemaphoreOSAL>(1, 1)),
      m_fileLock(std::make_unique<SyncObjectsOSAL::MutexOSAL>()) {}

TarnCommonFlows::~TarnCommonFlows() = default;

CLmnSA& TarnCommonFlows::Engine() {
    if (CLmnSA* engine = GetLmnSA()) return *engine;
    ThrowLogged("TarnCommonFlows::Engine", "There is no spectrum engine: the adapter was not initialised");
}

void TarnCommonFlows::RequestReceiverSetup() {
    const SyncObjectsOSAL::Entered entered(m_configLock);
    m_initFlags[0] = 1;
}

// Switches of the analysis.

void TarnCommonFlows::SetChannelAverageSweepVal(int value) {
    TRACE_SCOPE("TarnCommonFlows::SetChannelAverageSweepVal");
    FlowText::CheckRange<int>(value, 1, 100, "average sweeps");
    Engine().m_AverageSweepsVal = value;
    TRACE(TraceInfo, Common::Format("averageSweep = ${1}") % value);
}

void TarnCommonFlows::SetMaxHold(std::string text) {
    TRACE_SCOPE("TarnCommonFlows::SetMaxHold");
    const bool flag = FlowText::convertFromStringToBool(text);
    CLmnSA& engine = Engine();
    m_maxHoldOn = flag;
    if (flag && !engine.GetProperty(LmnSAProperty::MaxHold)) {
        TRACE(TraceInfo, "MaxHold enabled");
        RequestReceiverSetup();
        m_clearMaxHoldPending = true;
    }
    TRACE(TraceInfo, Common::Format("Setting property max hold to ${1}") % flag);
    engine.SetProperty(LmnSAProperty::MaxHold, flag);
}

void TarnCommonFlows::SetHistogram(std::string text) {
    TRACE_SCOPE("TarnCommonFlows::SetHistogram");
    const bool flag = FlowText::convertFromStringToBool(text);
    TRACE(TraceInfo, Common::Format("Setting property Histogram to ${1}") % flag);
    Engine().SetProperty(LmnSAProperty::Histogram, flag);
}

void TarnCommonFlows::SetFrequencyCompensation(std::string text) {
    TRACE_SCOPE("TarnCommonFlows::SetFrequencyCompensation");
    const bool flag = FlowText::convertFromStringToBool(text);
    TRACE(TraceInfo, Common::Format("Setting property FrequencyCompensation to ${1}") % flag);
    Engine().SetProperty(LmnSAProperty::FreqCompensation, flag);
}

void TarnCommonFlows::SetChannelAverage(std::string text) {
    TRACE_SCOPE("TarnCommonFlows::SetChannelAverage");
    const bool flag = FlowText::convertFromStringToBool(text);
    CLmnSA& engine = Engine();
    m_channelAverageOn = flag;
    const bool current = engine.GetProperty(LmnSAProperty::Average);
    engine.SetProperty(LmnSAProperty::Average, flag);
    if (flag && !current) {
        TRACE(TraceInfo, "Average enabled");
        m_clearAveragePending = true;
    }
}

void TarnCommonFlows::GetChannelAverage() {
    TRACE_SCOPE("TarnCommonFlows::GetChannelAverage");
    const bool flag = Engine().GetProperty(LmnSAProperty::Average);
    TRACE(TraceInfo, Common::Format("Getting property ChannelAverage ${1}") % flag);
    m_response += flag ? "true" : "false";
}

void TarnCommonFlows::SetChannelAverageCounter(std::string text) {
    TRACE_SCOPE("TarnCommonFlows::SetChannelAverageCounter");
    CLmnSA& engine = Engine();
    std::vector<std::int32_t> values;
    try {
        values = FlowText::SplitStringToInts(text, ",");
    } catch (...) {
        const Common::Caught dropped;
        ThrowLogged(traceFunctionName, "incorrect channel average counter value", TraceInfo);
    }
    if (values.size() != static_cast<std::size_t>(engine.NumOfRxChains()))
        ThrowLogged(traceFunctionName, "incorrect number of channel average counter values", TraceInfo);
    int chain = 0;
    for (const std::int32_t value : values) {
        FlowText::CheckRange<std::uint32_t>(static_cast<std::uint32_t>(value), 0, 99, "channel average counter");
        TRACE(TraceInfo,
              Common::Format("SetChannelAverageCounterPerChain for chain ${1} with value ${2}") % chain % value);
        engine.SetChannelAverageCounterPerChain(chain++, static_cast<unsigned>(value));
    }
}

void TarnCommonFlows::ClearMaxHold() {
    TRACE_SCOPE("TarnCommonFlows::ClearMaxHold");
    Engine().MaxHoldClear();
}

void TarnCommonFlows::ClearAverage() {
    TRACE_SCOPE("TarnCommonFlows::ClearAverage");
    Engine().AverageClear();
}

// Results as text.

void TarnCommonFlows::AnswerLines(const char* traceFunctionName, const char* failure,
                                  const std::function<std::string(const Readouts&)>& lines) {
    try {
        m_response = lines(Results());
    } catch (...) {
        const Common::Caught dropped;
        TRACE(TraceInfo, failure);
        TRACE(TraceInfo, dropped.TextOr("unknown exception"));
        m_response = failure;
    }
}

void TarnCommonFlows::UpdateSpectrum() {
    TRACE_SCOPE("TarnCommonFlows::UpdateSpectrum");
    AnswerLines(traceFunctionName, "Failed updating spectrum",
                [](const Readouts& results) { return PlainText::Bins(results.Spectrum()); });
}

void TarnCommonFlows::UpdateMaxHold() {
    TRACE_SCOPE("TarnCommonFlows::UpdateMaxHold");
    AnswerLines(traceFunctionName, "Failed updating MaxHold",
                [](const Readouts& results) { return PlainText::Bins(results.MaxHold()); });
}

void TarnCommonFlows::UpdateChannelAverage() {
    TRACE_SCOPE("TarnCommonFlows::UpdateChannelAverage");
    AnswerLines(traceFunctionName, "Failed updating channel average",
                [](const Readouts& results) { return PlainText::Bins(results.ChannelAverage()); });
}

void TarnCommonFlows::UpdateIQ() {
    TRACE_SCOPE("TarnCommonFlows::UpdateIQ");
    AnswerLines(traceFunctionName, "Failed updating IQ",
                [](const Readouts& results) { return PlainText::IQ(results.IQ()); });
}

void TarnCommonFlows::UpdateHistogram() {
    TRACE_SCOPE("TarnCommonFlows::UpdateHistogram");
    AnswerLines(traceFunctionName, "Failed updating Histogram",
                [](const Readouts& results) { return PlainText::Histogram(results.Histogram()); });
}

void TarnCommonFlows::GetPowerByChain(std::string chain) {
    TRACE_SCOPE("TarnCommonFlows::GetPowerByChain");
    TRACE(TraceInfo, Common::Format("Chain selected: ${1}") % chain);
    const Readouts results = Results();
    if (chain != "A" && chain != "B")
        ThrowLogged(traceFunctionName, Common::Format("${1} is an invalid argument for a chain") % chain);
    const double power = results.ChannelPower(chain);
    m_response = PlainText::Number(power);
    TRACE(TraceInfo, Common::Format("power on chain ${1} is ${2}\n") % chain % power);
}

std::string TarnCommonFlows::GetAppVersion() {
    TRACE_SCOPE("TarnCommonFlows::GetAppVersion");
    return m_version;
}

// Exports.

void TarnCommonFlows::ExportToFile(const char* traceFunctionName, const std::string& path,
                                   const std::function<void(const std::string&)>& write) {
    const SyncObjectsOSAL::Locked locked(*m_fileLock);
    if (OSAL::IsLink(path)) ThrowLogged(traceFunctionName, Common::Format("File ${1} is a link") % path);
    write(path);
}

void TarnCommonFlows::SaveSpectrum(std::string path) {
    TRACE_SCOPE("TarnCommonFlows::SaveSpectrum");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) { Engine().DumpSpectrum(file); });
}

void TarnCommonFlows::SaveMaxHold(std::string path) {
    TRACE_SCOPE("TarnCommonFlows::SaveMaxHold");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) { Engine().DumpMaxHold(file); });
}

void TarnCommonFlows::SaveIQ(std::string path) {
    TRACE_SCOPE("TarnCommonFlows::SaveIQ");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) { Engine().DumpIQ(file); });
}
