#include "CaptureClasses.h"

#include "CSampleClover.h"

namespace WifiAdc {

std::unique_ptr<CSampleCommon> MakeSampler(RadioFacts::CaptureClass capture, quayCommand::IAdcCommands* adc,
                                           LumenSpectrumAnalyzer::CLmnSA* lmnSA) {
    using enum RadioFacts::CaptureClass;
    switch (capture) {
        case Sorrel:
            return std::make_unique<CSampleSorrel>(adc, lmnSA);
        case Tansy:
            return std::make_unique<CSampleTansy>(adc, lmnSA);
        case Yarrow:
            return std::make_unique<CSampleYarrow>(adc, lmnSA);
        case Clover:
            break;
    }
    return std::make_unique<CSampleClover>(adc, lmnSA);
}

}  // namespace WifiAdc
