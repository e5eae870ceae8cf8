// Exports and the offline analysis, with a message at their end; and the power table of the stored triggers.
#include "Device/ChannelDatabase.h"
#include "Streams/Trace.h"
#include "Web/JsonText.h"
#include "Web/TarnWifiFlowsWeb.h"

namespace {

std::string Last(const std::vector<std::string>& list) {
    return list.empty() ? std::string() : list.back();
}

}  // namespace

void TarnWifiFlowsWeb::SaveSpectrum(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SaveSpectrum");
    if (m_plainOutput) return TarnWifiFlows::SaveSpectrum(path);
    Engine().DumpSpectrum(path);
    Send(traceFunctionName, "Save Spectrum Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::SaveMaxHold(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SaveMaxHold");
    if (m_plainOutput) return TarnWifiFlows::SaveMaxHold(path);
    Engine().DumpMaxHold(path);
    Send(traceFunctionName, "Save MaxHold Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::SaveIQ(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SaveIQ");
    if (m_plainOutput) return TarnWifiFlows::SaveIQ(path);
    Engine().DumpIQ(path);
    Send(traceFunctionName, "Save IQ Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::SaveSpectrumByRBW(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::SaveSpectrumByRBW");
    if (m_plainOutput) return TarnWifiFlows::SaveSpectrumByRBW(path);
    Engine().DumpSpectrumByRBW(path);
    Send(traceFunctionName, "Save Spectrum by RBW-Power Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::ExportAllFreqPowerData(std::string path) {
    TRACE_SCOPE("TarnWifiFlowsWeb::ExportAllFreqPowerData");
    if (m_plainOutput) return TarnWifiFlows::ExportAllFreqPowerData(path);
    m_freqPowerStore.Write(path);
    Send(traceFunctionName, "Export Spectrum by Frequency-Power Response", JsonText::SavedStatus());
}

void TarnWifiFlowsWeb::ReadADCSamplesFromFile(std::string folder) {
    TRACE_SCOPE("TarnWifiFlowsWeb::ReadADCSamplesFromFile");
    TarnWifiFlows::ReadADCSamplesFromFile(folder);
    if (!m_plainOutput) Send(traceFunctionName, "Read ADC Samples From File Response", JsonText::Status("Returned"));
}

void TarnWifiFlowsWeb::SendPowerTableData() {
    TRACE_SCOPE("TarnWifiFlowsWeb::SendPowerTableData");
    JsonText::Array channels;
    for (const auto& [key, entry] : m_freqPowerStore.GetEntries()) {
        const std::string channel = std::to_string(key.channel);
        const auto band = static_cast<std::uint32_t>(key.band);
        const auto frequency = static_cast<std::int32_t>(GetChannelInfoByChannel(key.channel, key.bandwidth, band));
        const std::string width = BandwidthEnumToValue(key.bandwidth);
        const std::string bandText = BandText(band);
        channels.Next() += R"({"key": ")" + channel + ',' + width + ',' + bandText + R"(","value": )" +
                           JsonText::Object({{"channel", channel},
                                             {"frequency", std::to_string(frequency)},
                                             {"bandwidth", width},
                                             {"band", bandText},
                                             {"powerChainA", Last(entry.chainA)},
                                             {"powerChainB", Last(entry.chainB)}}) +
                           '}';
    }
    Send(traceFunctionName, "Power Table Data", channels.Take());
}
