// Capture of the third generation: a longer descriptor, and a read that also fills metadata.
#pragma once

#include "CSampleTansy.h"

namespace WifiAdc {

class CSampleYarrow : public CSampleTansy {
public:
    CSampleYarrow(quayCommand::IAdcCommands* adc, LumenSpectrumAnalyzer::CLmnSA* lmnSA);

    std::int32_t Initiate(quayCommand::AdcConfig adcConfig, const quayCommand::RxConfig& rxConfig) override;
    unsigned NumOfChainBuffers() override { return 4; }

protected:
    void PrepareRead() override;
    bool Read() override;
    void AfterSweep() override {}

    /// The record that this generation and the next one send.
    quayCommand::CaptureDescriptorC m_descriptor{};
    /// Filled by each read.
    std::vector<std::uint8_t> m_metadata;
};

}  // namespace WifiAdc
