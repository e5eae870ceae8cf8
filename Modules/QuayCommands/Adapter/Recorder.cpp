#include "Adapter/Recorder.h"

#include <exception>
#include <vector>

#include "HardwareTypes.h"

namespace quayCommand {
namespace {

/// Words that the radio wants; they have no meaning here.
CaptureDescriptorD NewDescriptor(std::uint32_t selector) {
    return {1, selector, 0, 0x80000000, 0x80000000, 0, 0x80000000, 0x80000000, 10, 2, 2};
}

CaptureDescriptorB OldDescriptor(std::uint32_t selector) {
    return {1, selector, 0, 0x40000000, 0x40000000, 0, 0x80000000, 0x40000000, 10, 2};
}

void Tune(IWifiCommands& wifi, IAdcCommands& adc, const RecordRequest& request) {
    RxConfig config;
    config.m_channel = request.tuning.channel;
    config.m_band = request.tuning.band;
    config.mode = 13;
    config.antennaMask = request.chains;
    config.m_currChain = request.chains;
    config.m_Bandwidth = request.tuning.bandwidth;
    config.secondBandwidth = request.tuning.bandwidth;
    config.antennaSelection = 3;
    wifi.SetLmac(request.tuning.band);
    adc.ConfigTxRx(&config);
    adc.StartStopAllPeriodicCalibrations();
}

void SetGain(IAdcCommands& adc, RadioFacts::GainLayout layout, const std::array<RecordGain, MaxChains>& gain) {
    const auto& [a, b] = gain;
    if (layout == RadioFacts::GainLayout::C) {
        adc.SetManualGainC({1, 0, 0, 0, a.internalGain, a.preLna, 0, 0, 0, 0, b.internalGain, b.preLna});
    } else if (layout == RadioFacts::GainLayout::B) {
        adc.SetManualGainB({1, 0, 0, a.internalGain, a.preLna, 0, 0, 0, b.internalGain, b.preLna});
    } else {
        GainConfig config;
        config.enable = 1;
        for (std::size_t c = 0; c < gain.size(); ++c) {
            config.chains[c].internalGain = gain[c].internalGain;
            config.chains[c].preLna = gain[c].preLna;
        }
        adc.SetManualGainA(config);
    }
}

/// Vectors for as many chains as a read may fill: the asked ones first, then spare ones.
struct ReadBuffers {
    explicit ReadBuffers(std::size_t samples) {
        for (std::size_t c = 0; c < i.size(); ++c) {
            values[2 * c].assign(samples, 0.0);
            values[2 * c + 1].assign(samples, 0.0);
            i[c] = values[2 * c].data();
            q[c] = values[2 * c + 1].data();
        }
    }
    std::array<std::vector<double>, 8> values;
    std::array<double*, 4> i{}, q{};
};

bool Read(IAdcCommands& adc, RadioFacts::CaptureClass capture, std::uint32_t chains, ReadBuffers& buffers) {
    const AdcReadRequest request = {0, 5000, 2, 2};
    switch (capture) {
        case RadioFacts::CaptureClass::Sorrel:
        case RadioFacts::CaptureClass::Tansy:
            adc.SetCaptureDescriptorB(OldDescriptor(chains));
            return adc.ReadCapture(request, buffers.i.data(), buffers.q.data());
        case RadioFacts::CaptureClass::Yarrow:
            adc.SetCaptureDescriptorC(NewDescriptor(chains));
            break;
        case RadioFacts::CaptureClass::Clover:
            adc.SetCaptureSource({3, 1, 0, 2, 0, 1});
            adc.SetCaptureDescriptorD(NewDescriptor(chains));
            break;
    }
    std::vector<std::uint8_t> metadata(CaptureMetadataBytes);
    return adc.ReadCaptureEx(request, buffers.i.data(), buffers.q.data(), metadata.data());
}

}  // namespace

OSAL::Outcome<Recording> RecordFrom(IWifiCommands& wifi, const OSAL::Outcome<CaptureFacts>& lastCapture,
                                    const RecordRequest& request) {
    try {
        const RadioFacts::HardwareType& hardware = RadioFacts::HardwareOf(wifi.GetHwType());
        auto& adc = *wifi.GetAdcObject();
        adc.SetCaptureMode(true);
        Tune(wifi, adc, request);
        SetGain(adc, hardware.gainLayout, request.gain);
        ReadBuffers buffers(adc.GetCaptureLength());
        const bool isRead = Read(adc, hardware.capture, request.chains, buffers);
        adc.SetCaptureMode(false);
        if (!isRead) return OSAL::Refusal{"the radio captured nothing: " + lastCapture.Reason()};
        Recording recording{{}, lastCapture.Value()};
        for (unsigned chain = 0; chain < MaxChains; ++chain) {
            if ((request.chains >> chain & 1) == 0) continue;
            const auto place = 2 * recording.chains.size();
            recording.chains.push_back({chain, std::move(buffers.values[place]), std::move(buffers.values[place + 1])});
        }
        return recording;
    } catch (const std::exception& error) {
        return OSAL::Refusal{std::string("the radio failed: ") + error.what()};
    }
}

}  // namespace quayCommand
