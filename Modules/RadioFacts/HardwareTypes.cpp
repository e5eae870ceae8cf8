#include "HardwareTypes.h"

namespace RadioFacts {

const HardwareType* FindHardware(std::uint32_t number) {
    const auto* const row = std::ranges::find(HardwareRows::Known, number, &HardwareType::number);
    return row == HardwareRows::Known.end() ? nullptr : row;
}

const HardwareType& HardwareOf(std::uint32_t number) {
    if (const HardwareType* row = FindHardware(number)) return *row;
    return number < HardwareRows::UnknownNewer.number ? HardwareRows::UnknownOlder : HardwareRows::UnknownNewer;
}

CardType CardOf(std::uint32_t number) {
    const auto* const row = std::ranges::find(CardTypes, number, &CardType::number);
    return row == CardTypes.end() ? CardType{number, 0, 0} : *row;
}

bool CanTune(std::uint32_t hardware, std::uint32_t card, const ChannelSet& channels) {
    const std::uint32_t width = WidthMhz(channels.bandwidth);
    const bool isCardAble = channels.band != 1 || width <= CardOf(card).widest52Mhz;
    return isCardAble && width <= HardwareOf(hardware).widestMhz[channels.band];
}

}  // namespace RadioFacts
