// Where the gain comes from that the engine takes off each power: the manual settings or the gain file.
#include <algorithm>

#include "Streams/Trace.h"
#include "Support/FlowText.h"
#include "TarnWifiFlows.h"

using quayCommand::ChainGain;
using Streams::ThrowLogged;
using Streams::TraceError;
using Streams::TraceInfo;

namespace {

/// The words of a chain that both radio layouts begin with.
void WriteGainWords(std::uint32_t* words, const quayCommand::ChainGain& gain, std::uint32_t coarse,
                    std::uint32_t fine) {
    words[0] = coarse;
    words[1] = fine;
    words[2] = gain.internalGain;
    words[3] = gain.preLna;
}

}  // namespace

// The gain file.

void TarnWifiFlows::SetGainFileLoadingParams(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::SetGainFileLoadingParams");
    m_gainFromFileActive = false;
    DeleteGainList();
    m_useGainFile = !path.empty();
    if (m_useGainFile) SetGainFilename(path);
}

void TarnWifiFlows::SetGainFilename(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::SetGainFilename");
    if (const auto failure = ReadGainFile(path, m_gainList))
        SetGainStatusResponse(*failure);
    else
        m_response.clear();
}

void TarnWifiFlows::SetGainStatusResponse(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetGainStatusResponse");
    m_response = std::move(text);
}

void TarnWifiFlows::DeleteGainList() {
    TRACE_SCOPE("TarnWifiFlows::DeleteGainList");
    m_gainList.Clear();
}

void TarnWifiFlows::ClearChainGainFields() {
    TRACE_SCOPE("TarnWifiFlows::ClearChainGainFields");
    for (ChainGain& chain : m_gainConfig.chains) {
        chain.externalGain = 0;
        chain.preLna = 0;
    }
}

void TarnWifiFlows::SetGainFromFile() {
    TRACE_SCOPE("TarnWifiFlows::SetGainFromFile");
    ClearChainGainFields();
    m_response = " ";
    const bool found = m_defaultsApplied && m_useGainFile && SearchGainValueSetGainFromFile();
    m_gainFromFileActive = found;
    m_useGainFile = found;
}

bool TarnWifiFlows::SearchGainValueSetGainFromFile() {
    TRACE_SCOPE("TarnWifiFlows::SearchGainValueSetGainFromFile");
    GainListNode key;
    key.deviceMac = m_macAddress;
    key.channel = GetChannelInfoByChannel(m_rxConfig.m_channel, m_rxConfig.m_Bandwidth, m_rxConfig.m_band);
    key.bandwidth = BandwidthEnumToValue(m_rxConfig.m_Bandwidth) + "MHz";
    TRACE(TraceInfo, Common::Format("key.deviceMac = ${1}, key.channel = ${2}, key.bandwidth = ${3}") % key.deviceMac %
                         key.channel % key.bandwidth);
    // Two chains at once have no row: the engine takes one value.
    const GainListNode* node = nullptr;
    if (m_rxConfig.m_currChain == 1 || m_rxConfig.m_currChain == 2) {
        key.chain = m_rxConfig.m_currChain == 1 ? "A" : "B";
        node = m_gainList.Find(key);
    }
    const bool first = m_firstGainLookup;
    m_firstGainLookup = false;
    if (node) {
        TRACE(TraceInfo, Common::Format("Key exist on chain ${1}") % key.chain);
        Engine().SetFileGain(node->gain);
        constexpr const char* Success = "Gain data was loaded successfully from the file";
        SetGainStatusResponse(Success);
        TRACE(TraceInfo, Success);
        return true;
    }
    if (first) {
        SetGainStatusResponse("");
        return false;
    }
    constexpr const char* NoMatch = "Could not use gain data from a file. No gain matching was found on file";
    SetGainStatusResponse(NoMatch);
    TRACE(TraceError, NoMatch);
    return false;
}

// The manual gain.

void TarnWifiFlows::SetInternalGains(std::uint32_t gain) {
    for (ChainGain& chain : m_gainConfig.chains)
        chain.internalGain = gain;
}

void TarnWifiFlows::SetManualGainConfig() {
    TRACE_SCOPE("TarnWifiFlows::SetManualGainConfig");
    const ChainGain& chainA = m_gainConfig.chains[0];
    const std::uint32_t internalGain = chainA.internalGain;
    try {
        if (RadioFacts::HardwareOf(m_hwType).hasTripleGainSteps && m_rxConfig.m_band == 1)
            for (ChainGain& chain : m_gainConfig.chains)
                chain.internalGain *= 3;
        m_gainConfig.enable = 1;
        GiveGainToRadio();
        if (!(m_useGainFile && m_gainFromFileActive))
            Engine().SetManualGain(chainA.preLna, chainA.internalGain, m_rxConfig.m_band);
    } catch (const Common::Exception& failure) {
        TRACE(TraceError, failure.what());
        SetInternalGains(internalGain);
        throw;
    } catch (...) {
        SetInternalGains(internalGain);
        throw;
    }
    SetInternalGains(internalGain);
}

void TarnWifiFlows::GiveGainToRadio() {
    switch (RadioFacts::HardwareOf(m_hwType).gainLayout) {
        case RadioFacts::GainLayout::B: {
            quayCommand::GainConfigB record{};
            ToGainConfigB(record, m_gainConfig);
            Adc().SetManualGainB(record);
            break;
        }
        case RadioFacts::GainLayout::C: {
            quayCommand::GainConfigC record{};
            ToGainConfigC(record, m_gainConfig);
            Adc().SetManualGainC(record);
            break;
        }
        case RadioFacts::GainLayout::A:
            Adc().SetManualGainA(m_gainConfig);
            break;
    }
}

void TarnWifiFlows::ToGainConfigB(quayCommand::GainConfigB& out, const quayCommand::GainConfig& gainConfig) {
    TRACE_SCOPE("TarnWifiFlows::ToGainConfigB");
    out = {};
    out[0] = gainConfig.enable;
    for (std::size_t chain = 0; chain < 2; ++chain) {
        const ChainGain& gain = gainConfig.chains[chain];
        std::uint32_t* words = &out[1 + chain * 5];
        WriteGainWords(words, gain, InternalGainCoarse(gain.gainIndex), InternalGainFine(gain.gainIndex));
        words[4] = static_cast<std::uint32_t>(static_cast<std::int32_t>(gain.fine));
    }
    out[11] = static_cast<std::uint32_t>(gainConfig.last);
}

void TarnWifiFlows::ToGainConfigC(quayCommand::GainConfigC& out, const quayCommand::GainConfig& gainConfig) {
    TRACE_SCOPE("TarnWifiFlows::ToGainConfigC");
    out = {};
    out[0] = gainConfig.enable;
    for (std::size_t chain = 0; chain < 2; ++chain) {
        const ChainGain& gain = gainConfig.chains[chain];
        std::uint32_t* words = &out[2 + chain * 6];
        WriteGainWords(words, gain, InternalGainCoarse(gain.gainIndex), InternalGainFine(gain.gainIndex));
        words[5] = static_cast<std::uint32_t>(static_cast<std::int32_t>(gain.fine));
    }
    out[14] = static_cast<std::uint32_t>(gainConfig.last);
}

unsigned TarnWifiFlows::InternalGainFine(unsigned gain) {
    TRACE_SCOPE("TarnWifiFlows::InternalGainFine");
    return gain == 0 || gain == 2 || gain == 4 ? 0 : 1;
}

unsigned TarnWifiFlows::InternalGainCoarse(unsigned gain) {
    TRACE_SCOPE("TarnWifiFlows::InternalGainCoarse");
    return std::min(gain / 2, 2u);
}

// Corrections of the power in the same sense.

void TarnWifiFlows::SetPowerDeembedding(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetPowerDeembedding");
    const bool flag = FlowText::convertFromStringToBool(text);
    TRACE(TraceInfo, Common::Format("Setting property PowerDeembedding to ${1}") % flag);
    Engine().SetProperty(LumenSpectrumAnalyzer::LmnSAProperty::PowerDeembedding, flag);
}

void TarnWifiFlows::SetNoiseFloor(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetNoiseFloor");
    auto& engine = Engine();
    const std::vector<std::int32_t> values = FlowText::SplitStringToInts(text, ",");
    if (values.size() != DeviceInfo().GetSupportedBands().size())
        ThrowLogged(traceFunctionName, "incorrect number of noise floor values", TraceInfo);
    unsigned band = 0;
    for (const std::int32_t value : values) {
        FlowText::CheckRange<int>(value, -160, -1, "noise floor");
        TRACE(TraceInfo, Common::Format("SetNoiseFloor for band ${1} with value ${2}") % band % value);
        engine.SetBandNoiseFloor(band++, value);
    }
}
