// What channels there are, and the forms of chains and bandwidths.
#include <utility>

#include "Streams/Trace.h"
#include "TarnWifiFlows.h"

bool TarnWifiFlows::IsBandSupportedForDevice(ChannelTableId tableId) {
    TRACE_SCOPE("TarnWifiFlows::IsBandSupportedForDevice");
    return ChannelDatabase::IsBandSupportedForDevice(tableId, m_cardType, m_hwType);
}

void TarnWifiFlows::InitChannelListDataBase() {
    TRACE_SCOPE("TarnWifiFlows::InitChannelListDataBase");
    // A repeated reset must not make the lists grow, and one that fails leaves the device its channels.
    auto tables = std::exchange(m_channelTables, {});
    auto flags = std::exchange(m_channelFlags, {});
    try {
        SelectChannels();
    } catch (...) {
        m_channelTables = std::move(tables);
        m_channelFlags = std::move(flags);
        throw;
    }
}

void TarnWifiFlows::SelectChannels() {
    quayCommand::RxConfig rxConfig = m_rxConfig;
    for (const ChannelTableId tableId : ChannelDatabase::SelectionOrder) {
        if (!IsBandSupportedForDevice(tableId)) continue;
        rxConfig.m_band = ChannelDatabase::BandOf(tableId);
        rxConfig.m_Bandwidth = ChannelDatabase::BandwidthOf(tableId);
        rxConfig.secondBandwidth = rxConfig.m_Bandwidth;
        const auto rows = ChannelDatabase::Table(tableId);
        InitChannelListPerBw({rows.begin(), rows.end()}, rxConfig, tableId);
    }
}

void TarnWifiFlows::InitChannelListPerBw(std::vector<ChannelRow> rows, const quayCommand::RxConfig& rxConfig,
                                         ChannelTableId tableId) {
    TRACE_SCOPE("TarnWifiFlows::InitChannelListPerBw");
    const auto isSupported = [&nvm = Nvm(), &rxConfig](std::uint32_t channel) {
        return nvm.IsChannelSupported(channel, rxConfig.m_Bandwidth, rxConfig.m_band);
    };
    ChannelDatabase::AddSupportedRows(rows, tableId, rxConfig.m_band, rxConfig.m_Bandwidth, isSupported,
                                      m_channelTables, m_channelFlags);
}

double TarnWifiFlows::GetChannelInfoByChannel(double channel, std::uint32_t bandwidth, std::uint32_t band) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelInfoByChannel");
    return ChannelDatabase::GetChannelInfoByChannel(channel, bandwidth, band);
}

std::int32_t TarnWifiFlows::GetChannelIndex(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelIndex");
    return ChannelDatabase::GetChannelIndex(channel, bandwidth, band);
}

std::int32_t TarnWifiFlows::GetChannelIndex_802_11(std::int32_t channel, std::uint32_t bandwidth, std::uint32_t band) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelIndex_802_11");
    return ChannelDatabase::GetChannelIndex_802_11(channel, bandwidth, band);
}

std::int32_t TarnWifiFlows::GetChannelFromIndex(std::int32_t index, std::uint32_t band, std::uint32_t bandwidth) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelFromIndex");
    return ChannelDatabase::GetChannelFromIndex(index, band, bandwidth);
}

void TarnWifiFlows::GetChannelFromLineNumber(std::int32_t line, std::uint32_t& band, std::uint32_t& bandwidth,
                                             std::int32_t& channel) {
    TRACE_SCOPE("TarnWifiFlows::GetChannelFromLineNumber");
    if (const auto found = ChannelDatabase::GetChannelFromLineNumber(line)) {
        band = found->band;
        bandwidth = found->bandwidth;
        channel = found->channel;
    }
}

std::string TarnWifiFlows::BandwidthEnumToValue(std::uint32_t bandwidth) {
    TRACE_SCOPE("TarnWifiFlows::BandwidthEnumToValue");
    return ChannelDatabase::BandwidthEnumToValue(bandwidth);
}

std::uint32_t TarnWifiFlows::BandwidthValueToEnum(std::int32_t value) {
    TRACE_SCOPE("TarnWifiFlows::BandwidthValueToEnum");
    return ChannelDatabase::BandwidthValueToEnum(value);
}

std::uint32_t TarnWifiFlows::ConvertChainStringToU32(std::string chain) {
    TRACE_SCOPE("TarnWifiFlows::ConvertChainStringToU32");
    return ChannelDatabase::ConvertChainStringToU32(chain);
}

std::string TarnWifiFlows::ConvertChainU32ToString(std::uint32_t chain) {
    TRACE_SCOPE("TarnWifiFlows::ConvertChainU32ToString");
    return ChannelDatabase::ConvertChainU32ToString(chain);
}

bool TarnWifiFlows::is2RxChainsCard() {
    TRACE_SCOPE("TarnWifiFlows::is2RxChainsCard");
    return ChannelDatabase::Is2RxChainsCard(m_cardType);
}

void TarnWifiFlows::CheckChannelRates(const quayCommand::TxConfig&) {
    TRACE_SCOPE("TarnWifiFlows::CheckChannelRates");
}

void TarnWifiFlows::GuiToHWAnts(quayCommand::RxConfig& rxConfig, quayCommand::AdcConfig& adcConfig) {
    TRACE_SCOPE("TarnWifiFlows::GuiToHWAnts");
    ChannelDatabase::GuiToHWAnts(m_cardType, m_hwType, rxConfig, adcConfig);
}

// The front-end variant tells its front-end; a console asks with "-get_supported_config".
void TarnWifiFlows::GetSupportedChannels() {
    TRACE_SCOPE("TarnWifiFlows::GetSupportedChannels");
}

void TarnWifiFlows::GetSupportedChains() {
    TRACE_SCOPE("TarnWifiFlows::GetSupportedChains");
}
