#include "CSampleYarrow.h"

namespace WifiAdc {

CSampleYarrow::CSampleYarrow(quayCommand::IAdcCommands* adc, LumenSpectrumAnalyzer::CLmnSA* lmnSA)
    : CSampleTansy(adc, lmnSA), m_metadata(quayCommand::CaptureMetadataBytes) {}

std::int32_t CSampleYarrow::Initiate(quayCommand::AdcConfig adcConfig, const quayCommand::RxConfig& rxConfig) {
    constexpr std::uint32_t Top = 0x80000000;
    m_descriptor = {1, rxConfig.m_currChain, 0, Top, Top, 0, Top, Top, 10, 2, 2};
    m_readRequest[3] = 2;
    SetSource(static_cast<std::uint32_t>(adcConfig.chainMode));
    return m_numChains;
}

void CSampleYarrow::PrepareRead() {
    m_adc->SetCaptureDescriptorC(m_descriptor);
}

bool CSampleYarrow::Read() {
    return m_adc->ReadCaptureEx(m_readRequest, m_pI, m_pQ, m_metadata.data());
}

}  // namespace WifiAdc
