// Channel sets by band and width, and what follows from them.
#include <array>

#include "ChannelPlan.h"
#include "CoreErrors.h"
#include "WifiDefs.h"

namespace BackEnd::Wifi {

namespace {

using enum EBand;
using enum EBandWidth;

/// Behind 10 MHz, which has no channels, stand the bandwidth numbers of the channel plan.
constexpr std::array widths = {Width10, Width20, Width40, Width80, Width160, Width320};

using ChannelSets = std::array<std::array<std::set<int>, widths.size()>, RadioFacts::BandCount>;

std::size_t BandIndex(EBand band, const char* function) {
    const auto index = static_cast<std::size_t>(band);  // a negative value becomes a large one
    CORE_ASSERT(index < RadioFacts::BandCount, function);
    return index;
}

/// The position of the base width among the six, or their number.
std::size_t WidthIndex(EBandWidth width) {
    std::size_t index = 0;
    while (index < widths.size() && widths[index] != GetBaseWidth(width))
        ++index;
    return index;
}

[[noreturn]] void FailWidth(std::uint32_t line, const char* function) {
    Core::Fail("Unknown Bandwidth", __FILE__, line, function);
}

const ChannelSets& AllSets() {
    static const ChannelSets sets = [] {
        ChannelSets filled;
        for (const RadioFacts::ChannelSet& set : RadioFacts::ChannelPlan)
            ForEachChannel(set, [&](int channel) { filled[set.band].at(set.bandwidth + 1).insert(channel); });
        return filled;
    }();
    return sets;
}

}  // namespace

const std::set<int>& GetChannelSet(EBand band, EBandWidth width) {
    constexpr const char* function = "BackEnd::Wifi::GetChannelSet";
    const std::size_t index = WidthIndex(width);
    if (index == widths.size()) FailWidth(__LINE__, function);
    return AllSets()[BandIndex(band, function)][index];
}

EBand GetChannelBand(int channel) {
    for (const RadioFacts::ChannelSet& set : RadioFacts::ChannelPlan)  // lower bands first
        if (channel > 0 && RadioFacts::HasChannel(set.band, set.bandwidth, static_cast<std::uint32_t>(channel)))
            return static_cast<EBand>(set.band);
    return noBand;
}

unsigned GetChannelFrequency(unsigned channel, EBand band) {
    const std::size_t index = BandIndex(band, "BackEnd::Wifi::GetChannelFrequency");
    const int number = static_cast<int>(channel);  // a huge number becomes negative and is in no set
    if (GetChannelBand(number) == noBand) return 0;
    return static_cast<unsigned>(RadioFacts::RuleCentreMhz(static_cast<std::uint32_t>(index), number));
}

std::string GetChannelTitle(unsigned channel, EBand band, EBandWidth width) {
    if (WidthIndex(width) == widths.size()) FailWidth(__LINE__, "BackEnd::Wifi::GetChannelTitle");
    const bool marked = IsWidth40(width) && band == Band2_4GHz;
    return Common::Format(marked ? "${1}F / ${2} MHz" : "${1} / ${2} MHz") % channel %
           GetChannelFrequency(channel, band);
}

const std::set<int>& GetNdpToneSet(EBandWidth width) {
    static std::set<int> tones;
    const std::size_t index = WidthIndex(width);
    if (index == 0 || index == widths.size()) FailWidth(__LINE__, "BackEnd::Wifi::GetNdpToneSet");
    const auto mhz = static_cast<int>(RadioFacts::WidthMhz(static_cast<std::uint32_t>(index - 1)));
    const int last = mhz / 20 * 18;
    tones.clear();
    for (int tone = 1; tone <= last; ++tone)
        tones.insert(tones.end(), tone);
    return tones;
}

std::set<EControlChannel> GetSubChannels(EBandWidth width) {
    using enum EControlChannel;
    static const std::set<EControlChannel> two = {Low, High};
    static const std::set<EControlChannel> four = {Low, MidLow, MidHigh, High};
    static const std::set<EControlChannel> eight = {Low, Low20, Low40, MidLow, MidHigh, High40, High20, High};
    static const std::set<EControlChannel> sixteen = {Low,     Low20,   Low40,   Low60,  Low80,  Low100, Low120, MidLow,
                                                      MidHigh, High120, High100, High80, High60, High40, High20, High};
    switch (width) {  // control channels of 40 MHz and wider, where fewer positions are left
        case Width40Of80:
        case Width80Of160:
        case Width160Of320:
            return two;
        case Width40Of160:
        case Width80Of320:
            return four;
        case Width40Of320:
            return eight;
        default:
            break;
    }
    switch (GetBaseWidth(width)) {
        case Width10:
        case Width20:
            return {};
        case Width40:
            return two;
        case Width80:
            return four;
        case Width160:
            return eight;
        case Width320:
            return sixteen;
        default:
            FailWidth(__LINE__, "BackEnd::Wifi::GetSubChannels");
    }
}

bool IsModulationPossible(EModulation modulation, EBand band, EBandWidth width) {
    const EBandWidth base = GetBaseWidth(width);
    switch (modulation) {
        case EModulation::OfdmHe:
            return base <= Width160;
        case EModulation::OfdmVht:
            return base < Width320 && (band == Band5GHz || band == Band6GHz);
        case EModulation::OfdmEht:
            return band == Band6GHz;
        case EModulation::OfdmHt:
            return base == Width20 || base == Width40 || base == Width10;
        case EModulation::Ofdm:
            return base == Width20 || base == Width10;
        case EModulation::Cck:
            return base == Width20 && band == Band2_4GHz;
    }
    Core::Fail(Common::Format("Unknown modulation - ${1}") % static_cast<std::int32_t>(modulation), __FILE__, __LINE__,
               "BackEnd::Wifi::IsModulationPossible");
}

}  // namespace BackEnd::Wifi
