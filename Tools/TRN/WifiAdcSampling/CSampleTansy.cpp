#include "CSampleTansy.h"

#include "LumenSA.h"

namespace WifiAdc {

void CSampleTansy::PrepareRead() {
    m_adc->SetCaptureDescriptorB(m_descriptorB);
}

void CSampleTansy::AfterSweep() {
    m_lmnSA->SetProperty(LumenSpectrumAnalyzer::LmnSAProperty::FreqCompensation, true);
}

}  // namespace WifiAdc
