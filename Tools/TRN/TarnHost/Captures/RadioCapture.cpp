#include "Captures/RadioCapture.h"

#include <array>
#include <memory>

#include "Guarded.h"
#include "HardwareTypes.h"

namespace TarnHost {
namespace {

using namespace quayCommand;

/// Words that the radio wants; they have no meaning here.
CaptureDescriptorD NewDescriptor(std::uint32_t selector) {
    return {1, selector, 0, 0x80000000, 0x80000000, 0, 0x80000000, 0x80000000, 10, 2, 2};
}

CaptureDescriptorB OldDescriptor(std::uint32_t selector) {
    return {1, selector, 0, 0x40000000, 0x40000000, 0, 0x80000000, 0x40000000, 10, 2};
}

}  // namespace

OSAL::Outcome<RadioCapture> RadioCapture::Open() {
    RadioCapture radio(CommandFactory::GetInstance().getWifiInstance());
    const auto step = TarnSession::Guarded("can't open the adapter", [&] {
        radio.m_adc = radio.m_wifi->GetAdcObject();
        radio.m_abilities = {radio.m_wifi->GetHwType(), radio.m_wifi->GetCardType(),
                             radio.m_wifi->GetDeviceInfo()->GetAntennaMask(),
                             CommandFactory::GetInstance().getNvmInstance()};
    });
    if (!step) return step.Why();
    return radio;
}

OSAL::Outcome<std::vector<PlanEntry>> RadioCapture::Plan() {
    std::vector<PlanEntry> plan;
    const auto step =
        TarnSession::Guarded("can't ask the adapter for its channels", [&] { plan = MakeCapturePlan(m_abilities); });
    if (!step) return step.Why();
    return plan;
}

void RadioCapture::TuneTo(const PlanEntry& entry) {
    RxConfig config;
    config.m_channel = entry.channel;
    config.m_band = entry.band;
    config.mode = 13;
    config.antennaMask = entry.chain;
    config.m_currChain = entry.chain;
    config.m_Bandwidth = entry.bandwidth;
    config.secondBandwidth = entry.bandwidth;
    config.antennaSelection = 3;
    m_wifi->SetLmac(entry.band);
    m_adc->ConfigTxRx(&config);
    m_adc->StartStopAllPeriodicCalibrations();
}

void RadioCapture::SetHighestGain() {
    GainConfig gain;
    gain.enable = 1;
    switch (RadioFacts::HardwareOf(m_abilities.hwType).gainLayout) {
        case RadioFacts::GainLayout::A:
            return m_adc->SetManualGainA(gain);
        case RadioFacts::GainLayout::B:
            return m_adc->SetManualGainB({gain.enable});
        case RadioFacts::GainLayout::C:
            return m_adc->SetManualGainC({gain.enable});
    }
}

bool RadioCapture::Read(const PlanEntry& entry, Samples& samples) {
    const std::size_t length = m_adc->GetCaptureLength();
    samples.i.assign(length, 0.0);
    samples.q.assign(length, 0.0);
    // the radio may fill as many chains as its buffers have; only the first is asked for
    std::array<std::vector<double>, 6> spare;
    spare.fill(std::vector<double>(length));
    std::array<double*, 4> i = {samples.i.data(), spare[0].data(), spare[1].data(), spare[2].data()};
    std::array<double*, 4> q = {samples.q.data(), spare[3].data(), spare[4].data(), spare[5].data()};
    const AdcReadRequest request = {0, 5000, 2, 2};

    const RadioFacts::CaptureClass capture = RadioFacts::HardwareOf(m_abilities.hwType).capture;
    if (capture == RadioFacts::CaptureClass::Sorrel || capture == RadioFacts::CaptureClass::Tansy) {
        m_adc->SetCaptureDescriptorB(OldDescriptor(entry.chain));
        return m_adc->ReadCapture(request, i.data(), q.data());
    }
    if (capture == RadioFacts::CaptureClass::Clover) {
        m_adc->SetCaptureSource({3, 1, 0, 2, 0, 1});
        m_adc->SetCaptureDescriptorD(NewDescriptor(entry.chain));
    } else {
        m_adc->SetCaptureDescriptorC(NewDescriptor(entry.chain));
    }
    std::vector<std::uint8_t> metadata(CaptureMetadataBytes);
    return m_adc->ReadCaptureEx(request, i.data(), q.data(), metadata.data());
}

OSAL::Outcome<Samples> RadioCapture::Capture(const PlanEntry& entry) {
    Samples samples;
    bool isRead = false;
    const auto step = TarnSession::Guarded("the radio failed", [&] {
        m_adc->SetCaptureMode(true);
        TuneTo(entry);
        SetHighestGain();
        isRead = Read(entry, samples);
        m_adc->SetCaptureMode(false);
    });
    if (!step) return step.Why();
    if (!isRead) return OSAL::Refusal{"the radio captured nothing"};
    return samples;
}

}  // namespace TarnHost
