// The flow object as the host drives it: Init, RunCommand, DeInit.
#include <algorithm>
#include <stdexcept>

#include "CaptureClasses.h"
#include "CmdLine/CmdLine.h"
#include "Device/NvmDocuments.h"
#include "LumenSAFamilies.h"
#include "Streams/Trace.h"
#include "TarnWifiFlows.h"

using Streams::ThrowLogged;
using Streams::TraceInfo;
using Streams::TraceWarning;
namespace Engines = LumenSpectrumAnalyzer;

namespace {

constexpr std::array<std::uint32_t, 3> GlnPlatforms{0x7AF0, 0x51F0, 0x54F0};
constexpr std::array<std::uint32_t, 2> CrkPlatforms{0x7F70, 0x7E40};
constexpr const char* CrkWorkloadFile = "Workload_CRK.bitcfg";

template <typename List>
bool Holds(const List& list, std::uint32_t value) {
    return std::ranges::find(list, value) != list.end();
}

}  // namespace

TarnWifiFlows::TarnWifiFlows(IHostOutput* host) : m_host(host) {}

TarnWifiFlows::~TarnWifiFlows() = default;

// What an operation needs.

quayCommand::IWifiCommands& TarnWifiFlows::Wifi() {
    if (m_wifi) return *m_wifi;
    ThrowLogged("TarnWifiFlows::Wifi", "There is no adapter: it was not initialised");
}

quayCommand::IAdcCommands& TarnWifiFlows::Adc() {
    if (m_adc) return *m_adc;
    ThrowLogged("TarnWifiFlows::Adc", "There is no receiver: the adapter was not initialised");
}

quayCommand::NvmCommands& TarnWifiFlows::Nvm() {
    if (m_nvm) return *m_nvm;
    ThrowLogged("TarnWifiFlows::Nvm", "There is no access to the adapter's memory: the adapter was not initialised");
}

quayCommand::IDeviceInfo& TarnWifiFlows::DeviceInfo() {
    if (auto* info = Wifi().GetDeviceInfo()) return *info;
    ThrowLogged("TarnWifiFlows::DeviceInfo", "The adapter tells nothing about itself");
}

WifiAdc::CSampleCommon& TarnWifiFlows::Sampler() {
    if (m_sampler) return *m_sampler;
    ThrowLogged("TarnWifiFlows::Sampler", "There is no capture object: the adapter was not initialised");
}

// Start and stop.

void TarnWifiFlows::Release() {
    m_vesperTestInProgress = false;
    m_workload.End();  // the load never outlives the test
    m_sampler.reset();
    m_lmnSA.reset();
    m_maxHoldOn = m_channelAverageOn = false;  // the engine that they were told to is gone
    for (auto& [tableId, rows] : m_channelTables)
        rows.clear();
    GetProcessor().GetParser().Clear();
}

void TarnWifiFlows::Init() {
    TRACE_SCOPE("TarnWifiFlows::Init");
    Release();  // a host that initialises twice: the adapter of before may be gone
    m_adc = nullptr;
    m_nvm = nullptr;
    m_wifi = CommandFactory::GetInstance().getWifiInstance();
    if (!Wifi().IsConnected()) {
        TRACE(TraceWarning, "Wifi not connected");
        return;
    }
    TarnCommonFlows::Init();
    RegisterKeys();
    m_cardType = m_wifi->GetCardType();
    m_hwType = m_wifi->GetHwType();
    TRACE(TraceInfo, Common::Format("m_hwType = ${1}, m_cardType = ${2}") % m_hwType % m_cardType);
    m_adc = m_wifi->GetAdcObject();
    InitLumen();
    IdentifyPlatform();
    m_nvm = CommandFactory::GetInstance().getNvmInstance();
    if (const std::string* document = NvmDocumentOfHardware(m_hwType)) Nvm().SetMetadata(*document);
    Nvm().GetMacAddress(m_macAddress);
    if (const char* country = RadioFacts::HardwareOf(m_hwType).startCountry) SetMccValue(country);
    TarnWifiFlows::ReloadMccProfile();  // text answers, in the front-end variant too
    m_firstGainLookup = true;
    m_consecutiveRuns = 0;
}

void TarnWifiFlows::InitLumen() {
    TRACE_SCOPE("TarnWifiFlows::InitLumen");
    const RadioFacts::HardwareType* hardware = RadioFacts::FindHardware(m_hwType);
    if (!hardware) {
        TRACE(Streams::TraceError, "Unknown device");
        throw std::runtime_error("Unknown device");
    }
    const bool needsBoard = hardware->boardQuery == RadioFacts::BoardQuery::AtStart;
    auto engine = Engines::MakeEngine(hardware->family, needsBoard ? GetAshBayBoardSKU() : 0U);
    m_sampler = WifiAdc::MakeSampler(hardware->capture, m_adc, engine.get());
    m_lmnSA = std::move(engine);
}

void TarnWifiFlows::IdentifyPlatform() {
    constexpr const char* traceFunctionName = "TarnWifiFlows::Init";  // one of its steps
    const std::uint32_t deviceId = m_wifi->GetPlatformDeviceId();
    m_vesper.m_isGLN = Holds(GlnPlatforms, deviceId);
    m_vesper.m_vesperChainMode = m_vesper.m_isGLN ? VesperAThenB : VesperBothChains;
    m_vesper.m_vesperIterations = m_vesper.m_isGLN ? 25 : 10;
    if (m_vesper.m_isGLN) {
        TRACE(TraceInfo, "GLN platform was identified");
    } else {
        m_lmnSA->SetIsBRK(true);
        TRACE(TraceInfo, "None GLN platform was identified");
    }
    if (Holds(CrkPlatforms, deviceId)) {
        TRACE(TraceInfo, "CRK Detected, Changing bitconfig file");
        m_vesper.m_bitcfgFile = CrkWorkloadFile;
    }
}

void TarnWifiFlows::DeInit() {
    TRACE_SCOPE("TarnWifiFlows::DeInit");
    const SyncObjectsOSAL::Locked locked(*m_sampleLock);
    Release();
}

// One line of keys.

void TarnWifiFlows::RunKeys(std::string& line) {
    CmdLine::TokenList tokens = CmdLine::Tokenize(line);
    GetProcessor().GetParser().Parse(tokens);
    line = CmdLine::JoinTokens(tokens);
    if (!tokens.empty()) throw new CmdLine::Exceptions::ParsingException("Unrecognized command line option: " + line);
}

std::int32_t TarnWifiFlows::RunCommand(std::string& line, std::string& output, std::string& error, bool plainOutput) {
    TRACE_SCOPE("TarnWifiFlows::RunCommand");
    exitCode = 0;
    m_plainOutput = plainOutput;
    error.clear();
    const auto observe = [&](const Common::Caught& caught) {
        // A capture that failed may have left the lock held; at its maximum nothing changes.
        m_sampleLock->Release(1);
        if (const char* text = caught.Text()) error = std::string(text) + "\n";
    };
    exitCode = RunGuarded([&] { RunKeys(line); }, observe);
    if (!error.empty()) m_response = "ERROR:" + error;
    output = std::move(m_response);
    m_response.clear();
    return exitCode;
}

// What the host gets.

void TarnWifiFlows::Output(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::Output");
    if (m_host) m_host->Output(std::move(text));
}

void TarnWifiFlows::OutputObject(std::string, std::string) {
    TRACE_SCOPE("TarnWifiFlows::OutputObject");
}

void TarnWifiFlows::OutputError(std::string text) {
    TRACE_SCOPE("TarnWifiFlows::OutputError");
    if (m_host) m_host->OutputError(std::move(text));
}
