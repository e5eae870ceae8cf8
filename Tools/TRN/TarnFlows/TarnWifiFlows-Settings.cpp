// Measurement settings: each setter checks, writes the members and the engine's tuning fields, and marks what the next
// capture must do. None talks to the receiver.
#include <algorithm>

#include "Streams/Trace.h"
#include "Support/FlowText.h"
#include "TarnWifiFlows.h"

using Streams::ThrowLogged;
using Streams::TraceInfo;
using Streams::TraceWarning;

namespace {

constexpr std::array<double, 4> ResolutionsKhz{39.0625, 78.125, 156.25, 312.5};

}  // namespace

void TarnWifiFlows::MarkRetuned(bool average) {
    RequestReceiverSetup();
    m_clearMaxHoldPending = true;
    if (average) m_clearAveragePending = true;
}

void TarnWifiFlows::SetBand(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetBand");
    const auto band = RadioFacts::FindBand(text);
    if (!band || !Nvm().IsBandEnabled(*band))
        ThrowLogged(traceFunctionName, Common::Format("Band ${1} is not supported") % text);
    Engine().m_Band = *band;
    if (m_rxConfig.m_band == *band && !m_isFirstRun) return;
    m_rxConfig.m_band = *band;
    MarkRetuned(true);
}

void TarnWifiFlows::SetBandwidth(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetBandwidth");
    const auto bandwidth = RadioFacts::FindBandwidth(text);
    if (!bandwidth) ThrowLogged(traceFunctionName, "Invalid bandwidth");
    if (m_rxConfig.m_band < RadioFacts::LowestBandOf(*bandwidth)) {
        const std::string message = Common::Format("bandwidth ${1} is not supported in this band") % text;
        throw new CSvMsgException(message.c_str(), __FILE__, __LINE__, traceFunctionName);
    }
    auto& engine = Engine();
    engine.m_Bandwidth = static_cast<std::int32_t>(RadioFacts::WidthMhz(*bandwidth));
    if (m_rxConfig.m_Bandwidth == *bandwidth && !m_isFirstRun) return;
    m_rxConfig.m_Bandwidth = *bandwidth;
    SetSampleRate();
    MarkRetuned(true);
    engine.m_isInit = true;
}

void TarnWifiFlows::SetSampleRate() {
    TRACE_SCOPE("TarnWifiFlows::SetSampleRate");
    const RadioFacts::SampleRates rates = RadioFacts::HardwareOf(m_hwType).rates;
    const double rate = SampleRateMhz(rates, m_rxConfig.m_Bandwidth);
    Engine().m_SampleRate = rate;
    if (rates == RadioFacts::SampleRates::Fixed80 && rate == 0)
        TRACE(TraceWarning, "Sample rate set to 0.0 (due to unknown bandwidth)");
}

void TarnWifiFlows::SetChannel(int channel) {
    TRACE_SCOPE("TarnWifiFlows::SetChannel");
    auto& engine = Engine();
    const std::uint32_t bandwidth = m_rxConfig.m_Bandwidth;
    const auto flags = m_channelFlags.find({channel, m_rxConfig.m_band});
    if (flags == m_channelFlags.end())
        ThrowLogged(traceFunctionName, Common::Format("Channel ${1} is not supported") % channel);
    if (bandwidth >= RadioFacts::BandwidthCount) ThrowLogged(traceFunctionName, "bandwidth not set");
    if (!flags->second[bandwidth])
        ThrowLogged(traceFunctionName, Common::Format("Channel is not supported in bandwidth ${1}Mhz") %
                                           RadioFacts::Bandwidths[bandwidth].name);

    const auto tableId = ChannelDatabase::FindTable(m_rxConfig.m_band, bandwidth);
    const auto table = tableId ? m_channelTables.find(*tableId) : m_channelTables.end();
    if (table == m_channelTables.end() || table->second.empty())
        ThrowLogged(traceFunctionName, "Channel is not supported in chosen band");
    const std::vector<ChannelRow>& rows = table->second;
    const auto row = std::ranges::find(rows.begin() + 1, rows.end(), channel, &ChannelRow::channel);
    if (row == rows.end()) ThrowLogged(traceFunctionName, "Channel is not supported in chosen band");

    engine.m_ChannelIndex = static_cast<std::uint32_t>(row - rows.begin());
    engine.m_Channel = row->channel;
    engine.m_CenterFreq = row->frequency;
    const auto count = static_cast<std::int32_t>(rows.size());
    if (engine.m_NumOfChannels != count) {
        engine.m_NumOfChannels = count;
        TRACE(TraceInfo, Common::Format("Setting number of channels to  ${1}") % count);
        engine.m_isInit = true;
    }
    if (m_rxConfig.m_channel == static_cast<std::uint32_t>(channel) && !m_isFirstRun) return;
    m_rxConfig.m_channel = static_cast<std::uint32_t>(channel);
    MarkRetuned(false);  // the average goes on across a change of channel
}

void TarnWifiFlows::SetChain(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetChain");
    const std::uint32_t antennas = DeviceInfo().GetAntennaMask();
    const std::uint32_t chain = ConvertChainStringToU32(text);
    if ((chain & ~antennas) != 0) ThrowLogged(traceFunctionName, Common::Format("Chain ${1} is not valid") % text);
    auto& engine = Engine();
    m_chainName = text;
    engine.m_ChainName = text;
    if (m_rxConfig.m_currChain == chain && !m_isFirstRun) return;
    m_rxConfig.m_currChain = chain;
    m_rxConfig.antennaMask = chain;
    m_adcConfig.chainMode = chain == 3 ? 3 : 2;
    RequestReceiverSetup();
}

void TarnWifiFlows::SetRbw(double rbw) {
    TRACE_SCOPE("TarnWifiFlows::SetRbw");
    if (std::ranges::find(ResolutionsKhz, rbw) == ResolutionsKhz.end())
        ThrowLogged(traceFunctionName, Common::Format("RBW ${1} is not valid") % rbw);
    auto& engine = Engine();
    if (engine.m_RBW == rbw && !m_isFirstRun) return;
    engine.m_RBW = rbw;
    engine.m_isInit = true;
    m_clearMaxHoldPending = true;
    m_clearAveragePending = true;
}

// Manual gain. Any of it ends the use of a gain file.

void TarnWifiFlows::SetInternalGain(int gain) {
    TRACE_SCOPE("TarnWifiFlows::SetInternalGain");
    SetGainFileLoadingParams("");
    FlowText::CheckRange<int>(gain, 0, 5, "internal gain");
    for (auto& chain : m_gainConfig.chains)
        chain.internalGain = static_cast<std::uint32_t>(gain);
}

void TarnWifiFlows::SetExternalGain(std::string flag) {
    TRACE_SCOPE("TarnWifiFlows::SetExternalGain");
    SetGainFileLoadingParams("");
    if (FlowText::convertFromStringToBool(flag))
        throw Common::Exception("External gain is supported only for Elm HE or Oak");
    for (auto& chain : m_gainConfig.chains)
        chain.externalGain = 0;
}

void TarnWifiFlows::SetPreLnaResistor(std::string flag) {
    TRACE_SCOPE("TarnWifiFlows::SetPreLnaResistor");
    SetGainFileLoadingParams("");
    const bool on = FlowText::convertFromStringToBool(flag);
    for (auto& chain : m_gainConfig.chains)
        chain.preLna = on ? 1 : 0;
}

// Several at once.

void TarnWifiFlows::SetOptions(std::string band, std::string bandwidth, std::string channel, std::string chain) {
    TRACE_SCOPE("TarnWifiFlows::SetOptions");
    ResetConfig();
    SetBand(band);
    SetBandwidth(bandwidth);
    SetChannel(FlowText::TextToInt(channel));
    SetChain(chain);
}

void TarnWifiFlows::ResetFirstRunFlags() {
    TRACE_SCOPE("TarnWifiFlows::ResetFirstRunFlags");
    m_isFirstRun = true;
    m_firstGainLookup = true;
}
