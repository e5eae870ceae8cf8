// A row is the value, the text shown, a further text accepted.
#include "BluetoothDefs.h"

namespace BackEnd::Bluetooth {

using CoreTypes::EnumRow;
using CoreTypes::EnumTable;

EnumTable DescribeEnum(EBTAntennaDiversity) {
    static constexpr EnumRow rows[] = {{1, "1"}, {2, "2"}};
    return {"BT.AntennaDiversity", rows};
}

EnumTable DescribeEnum(EBt5Mode) {
    static constexpr EnumRow rows[] = {
        {1, "1M Bandwidth", "1m"},
        {2, "2M Bandwidth", "2m"},
        {3, "Long Range 8", "lr8"},
        {4, "Long Range 2", "lr2"},
    };
    return {"BT.BT5Mode", rows};
}

EnumTable DescribeEnum(EBtPowerMode) {
    static constexpr EnumRow rows[] = {{0, "driver"}, {1, "pcal"}};
    return {"BT.PowerMode", rows};
}

EnumTable DescribeEnum(ECsLePhy) {
    static constexpr EnumRow rows[] = {{0, "LE_1M"}, {1, "LE_2M"}};
    return {"CsLePhy", rows};
}

EnumTable DescribeEnum(ECsMode) {
    static constexpr EnumRow rows[] = {{0, "packet_cs_tone"}, {1, "packet"}, {2, "tone"}, {3, "tone_packet"}};
    return {"CsMode", rows};
}

EnumTable DescribeEnum(EGap) {
    static constexpr EnumRow rows[] = {{0, "None", "0"}, {1, "1 slot", "1"}, {3, "3 slots", "3"}, {5, "5 slots", "5"}};
    return {"BT.Gap", rows};
}

EnumTable DescribeEnum(EPatternType) {
    static constexpr EnumRow rows[] = {
        {0, "00000000", "all_0"},        {1, "11111111", "all_1"}, {2, "10101010", "alt_1bit"},
        {3, "11110000", "alt_4bit"},     {4, "PRBS9", "prbs9"},    {5, "01010101", "alt_1bit_neg"},
        {6, "00001111", "alt_4bit_neg"}, {7, "PRBS15", "prbs15"},
    };
    return {"BT.Pattern", rows};
}

EnumTable DescribeEnum(EBtPacketType) {
    static constexpr EnumRow rows[] = {
        {1, "DH1", "dh1"},    {2, "DH3", "dh3"},    {3, "DH5", "dh5"},    {4, "2-DH1", "2dh1"},
        {5, "2-DH3", "2dh3"}, {6, "2-DH5", "2dh5"}, {7, "3-DH1", "3dh1"}, {8, "3-DH3", "3dh3"},
        {9, "3-DH5", "3dh5"}, {10, "DM1", "dm1"},   {11, "DM3", "dm3"},   {12, "DM5", "dm5"},
    };
    return {"BT.PacketType", rows};
}

EnumTable DescribeEnum(EMode) {
    static constexpr EnumRow rows[] = {
        {0, "Idle", "BT.None"},
        {1, "Bluetooth BR/EDR Modulated Tx", "BT.Tx.Modulated.Classic"},
        {2, "Bluetooth Sine Wave", "BT.Tx.CarrierWave"},
        {6, "Bluetooth BR/EDR Continuous Rx", "BT.Rx.Classic"},
        {7, "StandBy", "BT.StandBy"},
        // 14 and 9 claim the same text; the later row has it.
        {14, "Bluetooth Low Energy Modulated Tx (With Hopping)", "BT.Tx.Modulated.LowEnergy"},
        {9, "Bluetooth Low Energy Modulated Tx", "BT.Tx.Modulated.LowEnergy"},
        {10, "Bluetooth Low Energy Continuous Rx", "BT.Rx.LowEnergy"},
        {11, "BT.Tx.Modulated.ChannelSounding"},
        {18, "Bluetooth BR/EDR Rx Sensitivity", "BT.RxStatistics.Classic"},
        {19, "Bluetooth Low Energy Rx Sensitivity", "BT.RxStatistics.LowEnergy"},
    };
    return {"BT.WorkMode", rows};
}

}  // namespace BackEnd::Bluetooth
