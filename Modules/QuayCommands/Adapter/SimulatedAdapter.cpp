#include "Adapter/SimulatedAdapter.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "GainModel.h"
#include "HardwareTypes.h"
#include "QuayExceptions.h"

namespace quayCommand {
namespace {

constexpr const char* SourceName = "Modules/QuayCommands/SimulatedAdapter";
// Nobody's ids: they say that no real adapter answers.
constexpr std::uint32_t SimulatedVendorId = 0x5144;
constexpr std::uint32_t SimulatedSubsystemId = 0x0001;
constexpr std::uint32_t SimulatedRevisionId = 0x01;

/// Hardware types without a rate of their own (5 and 8 among them) capture like the others of their time: twice the
/// narrowest channel, or the channel's width if that is more.
double CaptureRateMhz(std::uint32_t hwType, std::uint32_t bandwidth) {
    const double rate = SampleRateMhz(RadioFacts::HardwareOf(hwType).rates, bandwidth);
    return rate > 0.0 ? rate : SampleRateMhz(RadioFacts::SampleRates::ByWidth, bandwidth);
}

}  // namespace

void SimulatedAdc::Reset() {
    m_tuned = false;
    m_selector = 0;
    m_gains = {};
}

void SimulatedAdc::ConfigTxRx(const RxConfig* config) {
    m_tuned = false;
    if (!config) throw CQuayMsgException("no receiver record", "ConfigTxRx", SourceName, __LINE__);
    if (config->m_band >= RadioFacts::BandCount || config->m_Bandwidth >= RadioFacts::BandwidthCount)
        throw CQuayMsgException("no such band or bandwidth", "ConfigTxRx", SourceName, __LINE__);
    m_tuning = *config;
    m_tuned = true;
}

void SimulatedAdc::SetManualGainA(const GainConfig& gain) {
    for (std::size_t c = 0; c < MaxChains; ++c)
        m_gains[c] = {gain.chains[c].preLna, gain.chains[c].internalGain};
}

void SimulatedAdc::SetManualGainB(const GainConfigB& gain) {
    m_gains = {GainSetting{gain[4], gain[3]}, GainSetting{gain[9], gain[8]}};
}

void SimulatedAdc::SetManualGainC(const GainConfigC& gain) {
    m_gains = {GainSetting{gain[5], gain[4]}, GainSetting{gain[11], gain[10]}};
}

void SimulatedAdc::GetCaptureState(CaptureState& out) {
    out = {};  // idle
}

double SimulatedAdc::GainDb(unsigned chain) const {
    return LumenSpectrumAnalyzer::ManualGain(RadioFacts::HardwareOf(m_adapter.hwType).family, m_gains[chain].preLna,
                                             m_gains[chain].internalGain, m_tuning.m_band, chain == 0 ? "A" : "B",
                                             m_tuning.m_channel, RadioFacts::BoardNumber(m_adapter.boardSku));
}

OSAL::Outcome<> SimulatedAdc::CheckSetUp() const {
    const auto selected = SelectedChains();
    if (!m_tuned) return OSAL::Refusal{"the receiver isn't tuned, or its set-up failed"};
    if (selected == 0 || (selected & ~m_adapter.antennaMask) != 0)
        return OSAL::Refusal{"a selected chain has no antenna"};
    if ((selected & ~m_tuning.antennaMask) != 0)
        return OSAL::Refusal{"a selected chain isn't among the antennas that the receiver was set up with"};
    return {};
}

unsigned SimulatedAdc::ChainsReadWhole() {
    return CheckSetUp().IsRefused() ? 0 : static_cast<unsigned>(std::popcount(SelectedChains()));
}

OSAL::Outcome<CaptureFacts> SimulatedAdc::Capture(double** i, double** q) {
    if (auto able = CheckSetUp(); able.IsRefused()) return able.Why();
    std::array<ChainCapture, MaxChains> chains;
    std::size_t used = 0;
    for (unsigned chain = 0; chain < MaxChains; ++chain) {
        if ((SelectedChains() >> chain & 1) == 0) continue;
        chains[used] = {chain, GainDb(chain), {i[used], m_adapter.samples}, {q[used], m_adapter.samples}};
        ++used;
    }
    CaptureRequest request;
    request.centreMhz = RadioFacts::CentreMhz(m_tuning.m_band, m_tuning.m_channel);
    request.sampleRateMhz = CaptureRateMhz(m_adapter.hwType, m_tuning.m_Bandwidth);
    request.bandwidthMhz = RadioFacts::WidthMhz(m_tuning.m_Bandwidth);
    request.chains = std::span(chains).first(used);
    return CaptureAsAsked(m_air, request);
}

bool SimulatedAdc::ReadCapture(const AdcReadRequest&, double** i, double** q) {
    m_lastCapture = Capture(i, q);
    return !m_lastCapture.IsRefused();
}

bool SimulatedAdc::ReadCaptureEx(const AdcReadRequest& request, double** i, double** q, std::uint8_t* metadata) {
    if (metadata) std::memset(metadata, 0, CaptureMetadataBytes);
    return ReadCapture(request, i, q);
}

void SimulatedAdc::GetUcodeVersion(std::array<std::uint32_t, 2>& out) {
    out = {72, 1};
}

void SimulatedAdc::GetDriverVersion(std::array<char, 256>& out) {
    constexpr char text[] = "0.1.0.0 simulated";
    out.fill('\0');
    std::memcpy(out.data(), text, sizeof text);
}

void SimulatedAdc::GetUscVersion(std::array<std::uint32_t, 4>& out) {
    out = {0, 1, 0, 0};
}

void SimulatedAdc::GetSVDriverVersion(std::array<std::uint32_t, 4>& out) {
    out = {0, 1, 0, 0};
}

std::uint32_t SimulatedWifi::GetVendorId() {
    return SimulatedVendorId;
}

std::uint32_t SimulatedWifi::GetSubsystemId() {
    return SimulatedSubsystemId;
}

std::uint32_t SimulatedWifi::GetRevisionId() {
    return SimulatedRevisionId;
}

void SimulatedWifi::SetLmac(std::uint32_t band) {
    if (band < RadioFacts::BandCount) return;
    m_adc.LoseTuning();
    throw CQuayMsgException("no MAC for this band", "SetLmac", SourceName, __LINE__);
}

bool SimulatedNvm::IsChannelSupported(std::uint32_t channel, std::uint32_t bandwidth, std::uint32_t band) {
    return m_adapter.bands.contains(band) && RadioFacts::HasChannel(band, bandwidth, channel);
}

void SimulatedNvm::SetMcc(std::uint16_t code, bool apply) {
    m_storedMcc = code;
    m_applyStored = apply;
}

void SimulatedNvm::ApplyMcc() {
    if (m_applyStored && !IsKnownCountry(m_storedMcc))
        throw CQuayMsgException("no regulatory profile for this country", "ApplyMcc", SourceName, __LINE__);
}

}  // namespace quayCommand
