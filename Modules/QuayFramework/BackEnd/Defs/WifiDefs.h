// The vocabulary of the Wi-Fi radio: enumerations with their texts, channel sets, and pure functions on them.
// The members of an enumeration stand in its table (WifiDefs*.cpp); the names here are those that code needs.
// Thread: all tables are complete when the library has loaded; only GetNdpToneSet writes later.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "DefsStart.h"
#include "MetaType.h"

namespace BackEnd {

/// Whatever links a user of the vocabulary starts it at load, before that user's own static objects are built.
inline const bool startedAtLoad = Start();

}  // namespace BackEnd

namespace BackEnd::Wifi {

enum class EBand : std::int32_t { Band2_4GHz, Band5GHz, Band6GHz };
/// What GetChannelBand answers for a channel of no band; it has no text.
inline constexpr EBand noBand{3};

/// Bits 0 to 4: code of the whole width. Bits 5 to 9: code of the control channel's width. Bit 10: the control channel
/// is narrower than the whole. Bit 11: duplicated. Codes: 0 is 20 MHz, 1 is 40, 2 is 80, 4 is 160, 8 is 320, 16 is 10.
enum class EBandWidth : std::int32_t {
    Width20 = 0,
    Width40 = 33,
    Width80 = 66,
    Width160 = 132,
    Width320 = 264,
    Width10 = 528,
    Width40Of80 = 1058,
    Width40Of160 = 1060,
    Width80Of160 = 1092,
    Width40Of320 = 1064,
    Width80Of320 = 1096,
    Width160Of320 = 1160,
};

enum class EBandWidthMode : std::int32_t {};

/// Position of the control channel inside a wide channel, upwards in frequency.
enum class EControlChannel : std::int32_t {
    Low,
    Low20,
    Low40,
    Low60,
    Low80,
    Low100,
    Low120,
    MidLow,
    MidHigh,
    High120,
    High100,
    High80,
    High60,
    High40,
    High20,
    High
};

enum class ERate : std::int32_t {};
enum class EModulation : std::int32_t { OfdmHe, OfdmVht, OfdmEht, OfdmHt, Ofdm, Cck };
enum class ETransmissionMode : std::int32_t {};
/// A bit mask of chains: A is 1, B is 2, C is 4.
enum class EAntenna : std::int32_t {};
enum class EAntennaDiversity : std::int32_t {};
enum class EMode : std::int32_t {};
enum class EPowerMode : std::int32_t {};
enum class ESendPacketsMode : std::int32_t {};
enum class EFreqMode : std::int32_t {};
enum class EPA_CORE_MODE : std::int32_t {};
enum class ERegulatoryState : std::int32_t {};
enum class EResourceUnit : std::int32_t {};
enum class EGuardInterval : std::int32_t {};
enum class ELtf : std::int32_t {};
enum class ELpiMode : std::int32_t {};
/// A country code of two letters: (first - 'A') * 26 + (second - 'A').
enum class EMCC : std::int32_t {};

CoreTypes::EnumTable DescribeEnum(EBand);
CoreTypes::EnumTable DescribeEnum(EBandWidth);
CoreTypes::EnumTable DescribeEnum(EBandWidthMode);
CoreTypes::EnumTable DescribeEnum(EControlChannel);
CoreTypes::EnumTable DescribeEnum(ERate);
CoreTypes::EnumTable DescribeEnum(EModulation);
CoreTypes::EnumTable DescribeEnum(ETransmissionMode);
CoreTypes::EnumTable DescribeEnum(EAntenna);
CoreTypes::EnumTable DescribeEnum(EAntennaDiversity);
CoreTypes::EnumTable DescribeEnum(EMode);
CoreTypes::EnumTable DescribeEnum(EPowerMode);
CoreTypes::EnumTable DescribeEnum(ESendPacketsMode);
CoreTypes::EnumTable DescribeEnum(EFreqMode);
CoreTypes::EnumTable DescribeEnum(EPA_CORE_MODE);
CoreTypes::EnumTable DescribeEnum(ERegulatoryState);
CoreTypes::EnumTable DescribeEnum(EResourceUnit);
CoreTypes::EnumTable DescribeEnum(EGuardInterval);
CoreTypes::EnumTable DescribeEnum(ELtf);
CoreTypes::EnumTable DescribeEnum(ELpiMode);
CoreTypes::EnumTable DescribeEnum(EMCC);

/// The plain width of the whole channel: "40/160 MHz" has the base width 160 MHz.
constexpr EBandWidth GetBaseWidth(EBandWidth width) {
    const std::int32_t code = static_cast<std::int32_t>(width) & 31;
    return static_cast<EBandWidth>(code << 5 | code);
}
constexpr bool HasWidthCode(EBandWidth width, std::int32_t code) {
    return (static_cast<std::int32_t>(width) & 31) == code;
}
constexpr bool IsWidth20(EBandWidth width) {
    return HasWidthCode(width, 0);
}
constexpr bool IsWidth40(EBandWidth width) {
    return HasWidthCode(width, 1);
}
constexpr bool IsWidth80(EBandWidth width) {
    return HasWidthCode(width, 2);
}
constexpr bool IsWidth160(EBandWidth width) {
    return HasWidthCode(width, 4);
}
constexpr bool IsWidth320(EBandWidth width) {
    return HasWidthCode(width, 8);
}
constexpr bool IsWidth10(EBandWidth width) {
    return HasWidthCode(width, 16);
}

constexpr bool IsRateIn(ERate rate, std::int32_t first, std::int32_t end) {
    return static_cast<std::int32_t>(rate) >= first && static_cast<std::int32_t>(rate) < end;
}
constexpr bool IsLegacyRate(ERate rate) {
    return IsRateIn(rate, 0, 12);
}
constexpr bool IsHtRate(ERate rate) {
    return IsRateIn(rate, 12, 36);
}
constexpr bool IsHtOneStreamRate(ERate rate) {
    return IsRateIn(rate, 12, 20);
}
constexpr bool IsHtTwoStreamRate(ERate rate) {
    return IsRateIn(rate, 20, 28);
}
constexpr bool IsHtThreeStreamRate(ERate rate) {
    return IsRateIn(rate, 28, 36);
}

// The functions below throw Utilities::Exception, logged at error level: "Unknown Bandwidth" where the base width is
// none of the six, and a failed assertion where a band is none of the three.

/// The channels of a band at the width's base width; empty where the band has none.
const std::set<int>& GetChannelSet(EBand band, EBandWidth width);

/// The band of a channel number, or noBand. The numbers of the bands overlap: 2.4 GHz wins over 5 GHz over 6-7 GHz.
EBand GetChannelBand(int channel);

/// Centre in MHz by the band's rule alone, so that 2.4 GHz channel 14 gives 2477. 0 for a number that no band has.
unsigned GetChannelFrequency(unsigned channel, EBand band);

/// The line of a channel selector, "36 / 5180 MHz"; at 2.4 GHz and 40 MHz "6F / 2437 MHz".
std::string GetChannelTitle(unsigned channel, EBand band, EBandWidth width);

/// The tone numbers, from 1, in a set that the next call refills. Not safe against itself from two threads.
const std::set<int>& GetNdpToneSet(EBandWidth width);

/// The positions that a control channel can have.
std::set<EControlChannel> GetSubChannels(EBandWidth width);

/// Throws "Unknown modulation - N" for a value that is no modulation.
bool IsModulationPossible(EModulation modulation, EBand band, EBandWidth width);

/// The names under which radio settings are known.
inline constexpr std::string_view propertyKeys[] = {"rxChains",
                                                    "txChains",
                                                    "channel",
                                                    "ctrlChannel",
                                                    "bandWidth",
                                                    "rate",
                                                    "shortGuardInterval",
                                                    "frequencyOffset",
                                                    "powerA",
                                                    "powerB",
                                                    "powerC",
                                                    "powerMode",
                                                    "gain",
                                                    "frameSize",
                                                    "dutyCycle",
                                                    "frameInterval",
                                                    "captureDirected",
                                                    "localMac",
                                                    "modulation",
                                                    "loopInterval",
                                                    "FreqMode",
                                                    "paCoreMode",
                                                    "transmissionMode",
                                                    "regulatoryState",
                                                    "currentMCC",
                                                    "calibrationsRunning",
                                                    "sendPacketCount",
                                                    "destMacAddr",
                                                    "sendPacketsMode",
                                                    "antennaDiversity",
                                                    "resourceUnit",
                                                    "guardInterval",
                                                    "11AxExtendedRange",
                                                    "specificResourceUnit",
                                                    "NDPTone",
                                                    "NDPStatus",
                                                    "BandWidthMode",
                                                    "Idle",
                                                    "SupportedBands",
                                                    "Esr"};

}  // namespace BackEnd::Wifi
