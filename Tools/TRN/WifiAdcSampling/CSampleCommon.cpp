#include "CSampleCommon.h"

#include "LumenSA.h"
#include "QuayExceptions.h"

namespace WifiAdc {

CSampleCommon::CSampleCommon(quayCommand::IAdcCommands* adc, LumenSpectrumAnalyzer::CLmnSA* lmnSA)
    : m_adc(adc), m_lmnSA(lmnSA) {}

CSampleCommon::~CSampleCommon() = default;

void CSampleCommon::ReadSamples() {
    throw CQuayMsgException("Not Implemented", "WifiAdc::CSampleCommon::ReadSamples",
                            "Tools/TRN/WifiAdcSampling/CSampleCommon", 39);
}

void CSampleCommon::HandOverSamples(double** i, double** q, unsigned numOfSamples) {
    m_lmnSA->AddSweep(i, q, numOfSamples, 1);
    m_lmnSA->UpdateFromLastSweep();
}

void CSampleCommon::ScaleForSource(unsigned source, double& value) {
    if (source == 1) value *= 2.0;
}

}  // namespace WifiAdc
