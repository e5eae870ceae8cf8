// What the tool runs on, and the country whose rules the radio follows.
#include <cctype>

#include "Caught.h"
#include "Device/PlatformInfo.h"
#include "Streams/AppStreams.h"
#include "Streams/Trace.h"
#include "TarnWifiFlows.h"

using Streams::ThrowLogged;
using Streams::TraceError;
using Streams::TraceInfo;

namespace {

std::string FourNumbers(const std::array<std::uint32_t, 4>& numbers) {
    return Common::Format("${1}.${2}.${3}.${4}") % numbers[0] % numbers[1] % numbers[2] % numbers[3];
}

}  // namespace

std::string TarnWifiFlows::GetUcodeVersion() {
    TRACE_SCOPE("TarnWifiFlows::GetUcodeVersion");
    std::array<std::uint32_t, 2> numbers{};
    Adc().GetUcodeVersion(numbers);
    const std::string text = Common::Format("${1}.${2}") % numbers[0] % numbers[1];
    TRACE(TraceInfo, text);
    return text;
}

std::string TarnWifiFlows::GetDriverVersion() {
    TRACE_SCOPE("TarnWifiFlows::GetDriverVersion");
    std::array<char, 256> numbers{};
    Adc().GetDriverVersion(numbers);
    numbers.back() = '\0';
    const std::string text = numbers.data();
    TRACE(TraceInfo, text);
    return text;
}

std::string TarnWifiFlows::GetUscVersion() {
    TRACE_SCOPE("TarnWifiFlows::GetUscVersion");
    std::array<std::uint32_t, 4> numbers{};
    Adc().GetUscVersion(numbers);
    const std::string text = FourNumbers(numbers);
    TRACE(TraceInfo, text);
    return text;
}

std::string TarnWifiFlows::GetSVDriverVersion() {
    TRACE_SCOPE("TarnWifiFlows::GetSVDriverVersion");
    std::array<std::uint32_t, 4> numbers{};
    Adc().GetSVDriverVersion(numbers);
    const std::string text = FourNumbers(numbers);
    TRACE(TraceInfo, text);
    return text;
}

void TarnWifiFlows::GetComponentsVersions() {
    TRACE_SCOPE("TarnWifiFlows::GetComponentsVersions");
    const std::string ucode = GetUcodeVersion();
    const std::string driver = GetDriverVersion();
    const std::string usc = GetUscVersion();
    const std::string packetDriver = GetSVDriverVersion();
    m_response = "Application version: " + GetAppVersion();
    m_response += "\nUSC version: " + usc;
    m_response += "\nDriver version: " + driver;
    m_response += "\nFW version: " + ucode;
    m_response += "\nQUAYNDISUIO version: " + packetDriver;
    m_response += "\nMAC Address: " + m_macAddress + "\n";
}

void TarnWifiFlows::GetPlatformInfo() {
    TRACE_SCOPE("TarnWifiFlows::GetPlatformInfo");
    std::string text;
    for (const PlatformFact& fact : DescribePlatform())
        text.append(fact.label).append(": ").append(fact.value).append("\n");
    m_response = text;
}

void TarnWifiFlows::SupportedConfigToString() {
    TRACE_SCOPE("TarnWifiFlows::SupportedConfigToString");
    auto& wifi = Wifi();
    auto& engine = Engine();
    std::string text;
    for (const std::uint32_t number :
         {wifi.GetPlatformDeviceId(), wifi.GetVendorId(), wifi.GetSubsystemId(), wifi.GetRevisionId(),
          engine.m_SweepLen, static_cast<std::uint32_t>(engine.NumOfRxChains())})
        text += std::to_string(number) + "\n";
    text += m_macAddress + "\n";
    text += GetUcodeVersion() + "\n";
    text += GetDriverVersion() + "\n";
    text += GetUscVersion() + "\n";
    text += GetSVDriverVersion() + "\n";
    m_response = text + ChannelDatabase::FlagsToString(m_channelFlags);
}

AshBayBoardSKU TarnWifiFlows::GetAshBayBoardSKU() {
    TRACE_SCOPE("TarnWifiFlows::GetAshBayBoardSKU");
    if (RadioFacts::HardwareOf(m_hwType).boardQuery == RadioFacts::BoardQuery::Never)
        ThrowLogged(traceFunctionName, "This function is only intended for Ash/Bay devices!");
    switch (RadioFacts::BoardNumber(Adc().GetBoardSku())) {
        case eASH_BAY_BOARD_SKU_2230:
            TRACE(TraceInfo, "boardSku = eASH_BAY_BOARD_SKU_2230");
            return eASH_BAY_BOARD_SKU_2230;
        case eASH_BAY_BOARD_SKU_1216:
            TRACE(TraceInfo, "boardSku = eASH_BAY_BOARD_SKU_1216");
            return eASH_BAY_BOARD_SKU_1216;
        default:
            TRACE(TraceInfo, "boardSku = eASH_BAY_BOARD_SKU_OTHER");
            return eASH_BAY_BOARD_SKU_OTHER;
    }
}

// The country.

void TarnWifiFlows::SetMccValue(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::SetMccValue");
    if (text.empty()) {
        TRACE(TraceInfo, "MCC value is empty");
        return;
    }
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    if (text.size() == 2 && isLetter(text[0]) && isLetter(text[1])) {
        m_mcc = text;
        return;
    }
    TRACE(TraceError, Common::Format("Invalid MCC value: ${1}") % text);
    Streams::AppStreams::GetError() << "Error: Invalid MCC value: " << text << std::endl;
}

void TarnWifiFlows::ReloadMccProfile() {
    TRACE_SCOPE("TarnWifiFlows::ReloadMccProfile");
    auto& nvm = Nvm();
    if (!m_mcc.empty()) {
        const auto first = static_cast<unsigned char>(m_mcc[0]);
        const auto second = static_cast<unsigned char>(m_mcc[1]);
        nvm.SetMcc(static_cast<std::uint16_t>(first << 8 | second), true);
    }
    try {
        nvm.ApplyMcc();
    } catch (...) {
        const Common::Caught dropped;
        TRACE(TraceError, dropped.TextOr("unknown exception"));
        ThrowLogged(traceFunctionName, Common::Format("Failed to set MCC ${1}") % m_mcc);
    }
    DeviceInfo().Reload();
    SetDefaultConfigParamsAndGain();
    ClearFreqPowerData();
}
