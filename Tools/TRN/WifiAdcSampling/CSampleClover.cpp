#include "CSampleClover.h"

namespace WifiAdc {

void CSampleClover::PrepareRead() {
    m_adc->SetCaptureSource({3, 1, 0, 2, 0, 1});
    m_adc->SetCaptureDescriptorD(m_descriptor);
}

}  // namespace WifiAdc
