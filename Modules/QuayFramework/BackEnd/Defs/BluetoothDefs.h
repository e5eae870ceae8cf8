// The vocabulary of the Bluetooth radio. The members of each enumeration stand in its table in BluetoothDefs.cpp.
#pragma once

#include <cstdint>
#include <string_view>

#include "MetaType.h"

namespace BackEnd::Bluetooth {

enum class EBTAntennaDiversity : std::int32_t {};
enum class EBt5Mode : std::int32_t {};
enum class EBtPowerMode : std::int32_t {};
enum class ECsLePhy : std::int32_t {};
enum class ECsMode : std::int32_t {};
enum class EGap : std::int32_t {};
enum class EPatternType : std::int32_t {};
enum class EBtPacketType : std::int32_t {};
enum class EMode : std::int32_t {};

CoreTypes::EnumTable DescribeEnum(EBTAntennaDiversity);
CoreTypes::EnumTable DescribeEnum(EBt5Mode);
CoreTypes::EnumTable DescribeEnum(EBtPowerMode);
CoreTypes::EnumTable DescribeEnum(ECsLePhy);
CoreTypes::EnumTable DescribeEnum(ECsMode);
CoreTypes::EnumTable DescribeEnum(EGap);
CoreTypes::EnumTable DescribeEnum(EPatternType);
CoreTypes::EnumTable DescribeEnum(EBtPacketType);
CoreTypes::EnumTable DescribeEnum(EMode);

/// The names under which radio settings are known.
inline constexpr std::string_view propertyKeys[] = {
    "power",         "txPayloadSize",       "txPayloadSizeBLE", "pattern",          "patternBLE",    "txPacketType",
    "rxPacketType",  "txChannels",          "rxChannels",       "txChannelsBLE",    "rxChannelsBLE", "SetBDAddress",
    "rxPacketCount", "FinePowerAdjustment", "FinePowerEnabled", "FinePowerWarning", "FELossValue",   "FELossEnabled",
    "BT5Mode",       "antennaDiversity",    "powerMode"};

}  // namespace BackEnd::Bluetooth
