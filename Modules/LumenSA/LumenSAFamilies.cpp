#include "LumenSAFamilies.h"

#include "LumenSAAsh2.h"
#include "LumenSAAsh4.h"
#include "LumenSABay.h"
#include "LumenSAElmOak.h"
#include "LumenSAFirYew.h"
#include "LumenSAPine.h"
#include "LumenSARowan.h"

namespace LumenSpectrumAnalyzer {

std::unique_ptr<CLmnSA> MakeEngine(ChipFamily family, std::uint32_t boardSku) {
    switch (family) {
        case ChipFamily::ElmOak:
            return std::make_unique<CLmnElmOak>();
        case ChipFamily::FirYew:
            return std::make_unique<CLmnFirYew>();
        case ChipFamily::Ash2:
            return std::make_unique<CLmnAsh2>(boardSku);
        case ChipFamily::Bay:
            return std::make_unique<CLmnBay>(boardSku);
        case ChipFamily::Ash4:
            return std::make_unique<CLmnAsh4>(boardSku);
        case ChipFamily::Pine:
            return std::make_unique<CLmnPine>();
        case ChipFamily::Rowan:
            return std::make_unique<CLmnRowan>(boardSku);
        case ChipFamily::Plain:
            break;
    }
    return std::make_unique<CLmnSA>();
}

}  // namespace LumenSpectrumAnalyzer
