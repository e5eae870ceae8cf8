#include "Vesper/VesperSettings.h"

const char* VesperSettings::ChainModeText() const {
    switch (m_vesperChainMode) {
        case VesperBothChains:
            return "AB";
        case VesperAThenB:
            return "A->B";
        default:
            return "";
    }
}

std::optional<std::int32_t> VesperSettings::FindChainMode(std::string_view text) {
    if (text == "A" || text == "B") return VesperOneChain;
    if (text == "AB") return VesperBothChains;
    if (text == "A->B") return VesperAThenB;
    return std::nullopt;
}
