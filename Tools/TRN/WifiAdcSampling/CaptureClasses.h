// The capture object of each capture class.
#pragma once

#include <memory>

#include "CSampleCommon.h"
#include "HardwareTypes.h"

namespace WifiAdc {

/// Neither object is owned by the result; both must outlive it.
std::unique_ptr<CSampleCommon> MakeSampler(RadioFacts::CaptureClass capture, quayCommand::IAdcCommands* adc,
                                           LumenSpectrumAnalyzer::CLmnSA* lmnSA);

}  // namespace WifiAdc
