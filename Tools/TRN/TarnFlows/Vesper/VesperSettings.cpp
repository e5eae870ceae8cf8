#include "Vesper/VesperSettings.h"

#include <charconv>
#include <cstdlib>

std::int32_t VesperSettings::InitWait_ms() {
    constexpr std::int32_t usual_s = 15, most_s = 600;
    const char* named = std::getenv("TARN_WORKLOAD_WAIT");
    const std::string_view text = named ? named : "";
    std::int32_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isUsable = error == std::errc() && end == text.data() + text.size() && seconds >= 0 && seconds <= most_s;
    return (isUsable ? seconds : usual_s) * 1000;
}

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
