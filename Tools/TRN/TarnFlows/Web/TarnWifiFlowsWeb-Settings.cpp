// Gain, noise floor and country, and what the device supports.
#include "Device/ChannelDatabase.h"
#include "Device/PlatformInfo.h"
#include "Streams/Trace.h"
#include "Support/DroppedFailure.h"
#include "Support/FlowText.h"
#include "Web/JsonText.h"
#include "Web/TarnWifiFlowsWeb.h"

using Streams::TraceInfo;

void TarnWifiFlowsWeb::SetGainFromFile() {
    TRACE_SCOPE("TarnWifiFlowsWeb::SetGainFromFile");
    if (m_plainOutput) return TarnWifiFlows::SetGainFromFile();
    ClearChainGainFields();
    if (m_defaultsApplied && m_useGainFile) {
        m_gainFromFileActive = SearchGainValueSetGainFromFile();  // which reports its outcome
    } else {
        m_gainFromFileActive = false;
        if (!m_firstGainLookup)
            Send(traceFunctionName, "Gain Status", JsonText::Status("Could not use gain data from a file"));
    }
    m_useGainFile = m_gainFromFileActive;
}

void TarnWifiFlowsWeb::SetGainStatusResponse(std::string text) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SetGainStatusResponse");
    if (m_plainOutput) return TarnWifiFlows::SetGainStatusResponse(text);
    Send(traceFunctionName, "Gain Status", R"({"status": )" + JsonText::Quoted(text) + '}');
}

void TarnWifiFlowsWeb::SetNoiseFloor(std::string text) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SetNoiseFloor");
    if (m_plainOutput) return TarnWifiFlows::SetNoiseFloor(text);
    auto& engine = Engine();
    const std::vector<std::int32_t> values = FlowText::SplitStringToInts(text, ",");
    const std::size_t expected = m_isFirstRun ? m_firstRunNoiseFloors : DeviceInfo().GetSupportedBands().size();
    if (values.size() != expected)
        Streams::ThrowLogged(traceFunctionName, "incorrect number of noise floor values", TraceInfo);
    for (unsigned band = 0; band < values.size(); ++band) {
        TRACE(TraceInfo, Common::Format("SetNoiseFloor for band ${1} with value ${2}") % band % values[band]);
        engine.SetBandNoiseFloor(band, values[band]);
    }
}

void TarnWifiFlowsWeb::ReloadMccProfile() {
    TRACE_SCOPE("TarnWifiFlowsWeb::ReloadMccProfile");
    if (m_plainOutput) return TarnWifiFlows::ReloadMccProfile();
    const auto reason = DroppedFailure([this] {
        TarnWifiFlows::ReloadMccProfile();
        GetSupportedChannels();
    });
    Send(traceFunctionName, "Set MCC Response",
         JsonText::Object(
             {{"status", reason ? "Failure" : "Success"}, {"value", reason ? *reason : "MCC was set successfully."}}));
}

void TarnWifiFlowsWeb::GetSupportedChains() {
    TRACE_SCOPE("TarnWifiFlowsWeb::GetSupportedChains");
    if (m_plainOutput) return TarnWifiFlows::GetSupportedChains();
    const std::uint32_t antennas = DeviceInfo().GetAntennaMask();
    JsonText::Array chains;
    for (const char* chain : {"A", "B", "AB"}) {
        const bool isOnlyOne = antennas == 1 || antennas == 2;
        if (isOnlyOne && ConvertChainStringToU32(chain) != antennas) continue;
        chains.Next() += Common::Format(R"({"value": "${1}", "label": "${1}"})") % chain;
    }
    Send(traceFunctionName, "Supported Chains Data", chains.Take());
}

std::string TarnWifiFlowsWeb::BandObjects(const std::function<bool(std::uint32_t, std::int32_t)>& isListed) {
    JsonText::Array bands;
    for (const std::uint32_t band : DeviceInfo().GetSupportedBands()) {
        JsonText::Array widths;
        for (const auto& [tableId, rows] : m_channelTables) {  // by band, then by width
            if (ChannelDatabase::BandOf(tableId) != band || rows.size() < 2) continue;
            JsonText::Array channels;
            channels.Next() += JsonText::Object({{"value", "Scan All Channels"}, {"frequency", "NA"}});
            for (const ChannelRow& row : std::span(rows).subspan(1)) {
                const auto channel = static_cast<std::int32_t>(row.channel);
                if (!isListed(band, channel)) continue;
                channels.Next() +=
                    JsonText::Object({{"value", std::to_string(channel)},
                                      {"frequency", std::to_string(static_cast<std::int32_t>(row.frequency))}});
            }
            widths.Next() += R"({"bandwidth": ")" + BandwidthEnumToValue(ChannelDatabase::BandwidthOf(tableId)) +
                             R"(","channels": )" + channels.Take() + '}';
        }
        bands.Next() += R"({"band": ")" + BandText(band) + R"(","bandwidths": )" + widths.Take() + '}';
    }
    const std::string objects = bands.Take();
    return objects.substr(1, objects.size() - 2);
}

void TarnWifiFlowsWeb::GetSupportedChannels() {
    TRACE_SCOPE("TarnWifiFlowsWeb::GetSupportedChannels");
    if (m_plainOutput) return TarnWifiFlows::GetSupportedChannels();
    Send(traceFunctionName, "Supported Channels Data",
         '[' + BandObjects([](std::uint32_t, std::int32_t) { return true; }) + ']');
}

void TarnWifiFlowsWeb::GetPlatformInfo() {
    TRACE_SCOPE("TarnWifiFlowsWeb::GetPlatformInfo");
    if (m_plainOutput) return TarnWifiFlows::GetPlatformInfo();
    std::string body = "{";
    for (const PlatformFact& fact : DescribePlatform()) {
        if (body.size() > 1) body += ',';
        body += Common::Format(R"("${1}": "${2}")") % fact.name % fact.value;
    }
    Send(traceFunctionName, "Get Platform Info", body + '}');
}
