// The burn-in desense test as a front-end drives it: settings, start and stop, one sweep for each trigger, results.
#include <algorithm>
#include <array>

#include "OSAL/Time.h"
#include "Streams/Trace.h"
#include "Support/FlowText.h"
#include "Vesper/VesperConfigFile.h"
#include "Vesper/VesperReports.h"
#include "Web/JsonText.h"
#include "Web/TarnWifiFlowsWeb.h"

using Streams::TraceInfo;

namespace {

/// Members split by a comma and a blank, unlike those of most messages.
std::string SpacedMembers(std::initializer_list<std::pair<std::string_view, std::string_view>> members) {
    std::string text;
    for (const auto& [name, value] : members) {
        if (!text.empty()) text += ", ";
        text.append("\"").append(name).append("\": \"").append(value).append("\"");
    }
    return text;
}

}  // namespace

// Settings.

std::string TarnWifiFlowsWeb::GetChainModeStr() {
    TRACE_SCOPE("TarnWifiFlowsWeb::GetChainModeStr");
    const bool isOneChain = m_vesper.m_vesperChainMode == VesperOneChain;
    return isOneChain && (m_chainName == "A" || m_chainName == "B") ? m_chainName : m_vesper.ChainModeText();
}

std::string TarnWifiFlowsWeb::GetChannelsJsonFromStr(std::string lowBand, std::string highBand,
                                                     std::string ultraHighBand) {
    TRACE_SCOPE("TarnWifiFlowsWeb::GetChannelsJsonFromStr");
    const std::array lists{FlowText::SplitString(lowBand, ";"), FlowText::SplitString(highBand, ";"),
                           FlowText::SplitString(ultraHighBand, ";")};
    return BandObjects([&](std::uint32_t band, std::int32_t channel) {
        return band < lists.size() && std::ranges::find(lists[band], std::to_string(channel)) != lists[band].end();
    });
}

void TarnWifiFlowsWeb::SetVesperSettingsFromConfigFile(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SetVesperSettingsFromConfigFile");
    const std::vector<std::string> values = ParseVesperConfigFile(path);
    SetBandwidth(values[VesperParamBandwidth]);
    SetRbw(FlowText::AtofText(values[VesperParamRbw]));
    SetChainMode(values[VesperParamChainMode]);
    SetVesperIterations(FlowText::AtoiText(values[VesperParamIterations]));
    SetBitcfgFile(values[VesperParamBitcfg]);
    DisableBurnInTest(values[VesperParamDisableBit]);
    const std::string channels = GetChannelsJsonFromStr(values[VesperParamLowBand], values[VesperParamHighBand],
                                                        values[VesperParamUltraHighBand]);
    Send(traceFunctionName, "Vesper Settings Response",
         '{' +
             SpacedMembers({{"bw", values[VesperParamBandwidth]},
                            {"rbw", values[VesperParamRbw]},
                            {"chainMode", values[VesperParamChainMode]},
                            {"iterations", values[VesperParamIterations]}}) +
             R"(, "channels": [)" + channels + "]}");
}

// Messages.

void TarnWifiFlowsWeb::AddVesperTestMessage(std::string text) {
    TRACE_SCOPE("TarnWifiFlowsWeb::AddVesperTestMessage");
    if (m_plainOutput) return TarnWifiFlows::AddVesperTestMessage(text);
    const std::string time = OSAL::FormatLocalTime("%H:%M:%S");
    std::string body = '{' + SpacedMembers({{"timestamp", time}, {"message", text}}) + '}';
    m_vesperMessages.push_back('[' + time + "] >> " + text);
    Send(traceFunctionName, "Add Vesper Test Message Response", std::move(body));
}

void TarnWifiFlowsWeb::ClearVesperTestMessages() {
    TRACE_SCOPE("TarnWifiFlowsWeb::ClearVesperTestMessages");
    TarnWifiFlows::ClearVesperTestMessages();
    if (!m_plainOutput) Send(traceFunctionName, "Clear Vesper Test Messages", "{}");
}

void TarnWifiFlowsWeb::SaveVesperTestMessages(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SaveVesperTestMessages");
    TarnWifiFlows::SaveVesperTestMessages(path);
    if (!m_plainOutput) Send(traceFunctionName, "Save Vesper Test Messages Response", JsonText::SavedStatus());
}

// The test.

void TarnWifiFlowsWeb::StartVesperTest() {
    TRACE_SCOPE("TarnWifiFlowsWeb::StartVesperTest");
    if (m_plainOutput) return TarnWifiFlows::StartVesperTest();
    OpenVesperTest();
    WarmUpVesperTest();
    const auto& engine = Engine();
    Send(traceFunctionName, "Start Triggers Message",
         JsonText::Object({{"NumOfIterations", std::to_string(m_vesper.m_vesperIterations)},
                           {"ChainMode", GetChainModeStr()},
                           {"Bandwidth", std::to_string(engine.m_Bandwidth)},
                           {"RBW", JsonText::Number(engine.m_RBW)}}));
}

void TarnWifiFlowsWeb::ResumeVesperTest() {
    TRACE_SCOPE("TarnWifiFlowsWeb::ResumeVesperTest");
    WaitVesperDelay();
    AddVesperTestMessage("Resuming test...");
    SetVesperTestInProgress(true);
    WarmUpVesperTest();
    Send(traceFunctionName, "Resume Triggers Message", JsonText::Object({{"Msg", "Resume triggers"}}));
}

void TarnWifiFlowsWeb::StopVesperTest() {
    TRACE_SCOPE("TarnWifiFlowsWeb::StopVesperTest");
    TarnWifiFlows::StopVesperTest();
    Send(traceFunctionName, "Stop Vesper Test Response", JsonText::Status("Success"));
}

void TarnWifiFlowsWeb::CheckSpursForVesper() {
    constexpr const char* traceFunctionName = "TarnWifiFlowsWeb::ReadSamplesVesper";  // one of its steps
    auto& engine = Engine();
    for (const auto& spur : engine.GetSpurByRBW()) {
        const auto centre_mhz = static_cast<std::int32_t>(RadioFacts::CentreMhz(engine.m_Band, spur.channel));
        const std::string text = Common::Format(
                                     "A Spur found in Channel: ${1} freq: ${2}, Chain: ${3},  Spur Value: ${4}, "
                                     "BB Freq: ${5}, Spur Local Average: ${6}") %
                                 spur.channel % spur.frequency % spur.chain % spur.power %
                                 (spur.frequency - centre_mhz) % spur.neighbourAverage;
        TRACE(TraceInfo, text);
        AddVesperTestMessage(text);
        m_vesperStore.m_vesperSpurs[{static_cast<std::int32_t>(spur.channel), engine.m_Band}].push_back(spur);
    }
}

std::string TarnWifiFlowsWeb::ResultForVesper() {
    if (!m_vesper.IsLastIteration()) return {};
    const VesperKey key = CurrentVesperKey();
    const bool isPair = m_chainName == "AB";
    std::string members;
    for (const auto& [name, title, figure] :
         {std::tuple{"MaxPeak", "Max Peak", &TarnWifiFlowsWeb::GetChannelPeakForVesper},
          {"PowerAverage", "Average Power", &TarnWifiFlowsWeb::GetChannelAverageForVesper}}) {
        std::string message;
        for (const char* chain : {"A", "B"}) {
            if (!isPair && m_chainName != chain) continue;
            const std::string suffix = isPair ? chain : "";
            const std::string value = JsonText::Number((this->*figure)(key, chain));
            members += ",\"" + (name + suffix) + "\": \"" + value + '"';
            message +=
                (message.empty() ? "" : ", ") + std::string(title) + (isPair ? " " : "") + suffix + " = " + value;
        }
        AddVesperTestMessage(message);
    }
    return members;
}

void TarnWifiFlowsWeb::ReadSamplesVesper() {
    TRACE_SCOPE("TarnWifiFlowsWeb::ReadSamplesVesper");
    auto& engine = Engine();
    const auto centre_mhz = static_cast<std::int32_t>(engine.m_CenterFreq);
    const auto channel = static_cast<std::int32_t>(engine.m_Channel);
    AddVesperTestMessage(Common::Format("Sampling channel '${1}' (${2} MHz), chain ${3}, iteration ${4}...") % channel %
                         centre_mhz % engine.m_ChainName % m_vesper.m_vesperCurrentIteration);
    Adc().SetCaptureMode(true);
    PrepareTrigger();
    Sampler().ReadSamples();
    if (!m_vesper.m_isGLN) CheckSpursForVesper();
    UpdateSpectrumVesper();
    std::string body = JsonText::Object({{"numOfBins", std::to_string(engine.m_NumOfBins)},
                                         {"Band", std::to_string(engine.m_Band)},
                                         {"Channel", std::to_string(channel)},
                                         {"Chain", engine.m_ChainName},
                                         {"Frequency", std::to_string(centre_mhz)}});
    body.pop_back();
    body += ResultForVesper() + '}';
    Send(traceFunctionName, "Trigger Response Vesper", std::move(body));
    Adc().SetCaptureMode(false);
}

// Results.

void TarnWifiFlowsWeb::ExportVesperResult(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::ExportVesperResult");
    TarnWifiFlows::ExportVesperResult(path);
    if (!m_plainOutput) Send(traceFunctionName, "Export Vesper Result Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::DumpVesperData(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::DumpVesperData");
    TarnWifiFlows::DumpVesperData(path);
    if (!m_plainOutput) Send(traceFunctionName, "Dump Vesper Data Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::GetChannelGraphDataForVesper(std::string text) {
    TRACE_SCOPE("TarnWifiFlowsWeb::GetChannelGraphDataForVesper");
    const std::vector<std::int32_t> values = FlowText::SplitStringToInts(text, ",");
    if (values.size() != 2)
        Streams::ThrowLogged(
            traceFunctionName,
            Common::Format("Incorrect number of values: expected 2 but received ${1}") % values.size());
    Send(traceFunctionName, "Vesper Channel Data Response",
         VesperReports::Graph(m_vesperStore, m_vesper, Engine(), {values[0], static_cast<std::uint32_t>(values[1])}));
}
