// The enumerations whose members are a few rows each. A row is the value, the text shown, a further text accepted.
#include "WifiDefs.h"

namespace BackEnd::Wifi {

using CoreTypes::EnumRow;
using CoreTypes::EnumTable;

EnumTable DescribeEnum(EBand) {
    static constexpr EnumRow rows[] = {
        {0, "2.4 GHz", "2.4"},
        {1, "5 GHz", "5"},
        {2, "6-7 GHz", "6-7"},
    };
    return {"Wifi.Band", rows};
}

EnumTable DescribeEnum(EBandWidth) {
    static constexpr EnumRow rows[] = {
        {528, "10 MHz", "10"},
        {0, "20 MHz", "20"},
        {33, "40 MHz", "40"},
        {66, "80 MHz", "80"},
        {132, "160 MHz", "160"},
        {264, "320 MHz", "320"},
        {1025, "20/40 MHz", "20/40"},
        {2081, "40 MHz (Dup)", "40dup"},
        {1026, "20/80 MHz", "20/80"},
        {1058, "40/80 MHz", "40/80"},
        {2114, "80 MHz (Dup)", "80dup"},
        {1028, "20/160 MHz", "20/160"},
        {1060, "40/160 MHz", "40/160"},
        {1092, "80/160 MHz", "80/160"},
        {2180, "160 MHz (Dup)", "160dup"},
        {1032, "20/320 MHz", "20/320"},
        {1064, "40/320 MHz", "40/320"},
        {1096, "80/320 MHz", "80/320"},
        {1160, "160/320 MHz", "160/320"},
        {2312, "320 MHz (Dup)", "320dup"},
    };
    return {"Wifi.BandWidth", rows};
}

EnumTable DescribeEnum(EBandWidthMode) {
    static constexpr EnumRow rows[] = {{0, "FULL"}, {1, "PARTIAL"}, {2, "NDP"}, {3, "LARGE_RU"}, {4, "LARGE_RU_SU"}};
    return {"Wifi.BandWidthMode", rows};
}

EnumTable DescribeEnum(EControlChannel) {
    static constexpr EnumRow rows[] = {
        {0, "Low"},      {1, "Low+20"},   {2, "Low+40"},   {3, "Low+60"},   {4, "Low+80"},    {5, "Low+100"},
        {6, "Low+120"},  {7, "Mid-low"},  {8, "Mid-high"}, {9, "High-120"}, {10, "High-100"}, {11, "High-80"},
        {12, "High-60"}, {13, "High-40"}, {14, "High-20"}, {15, "High"},
    };
    return {"Wifi.ControlChannel", rows};
}

EnumTable DescribeEnum(EModulation) {
    static constexpr EnumRow rows[] = {
        {0, "OFDM-HE"}, {1, "OFDM-VHT"}, {2, "OFDM-EHT"}, {3, "OFDM-HT"}, {4, "OFDM"}, {5, "CCK"},
    };
    return {"Wifi.Modulation", rows};
}

EnumTable DescribeEnum(ETransmissionMode) {
    static constexpr EnumRow rows[] = {{0, "SISO"}, {1, "MIMO"}, {2, "CDD"}, {3, "STBC"}, {4, "DD"}};
    return {"Wifi.TransmissionMode", rows};
}

EnumTable DescribeEnum(EAntenna) {
    static constexpr EnumRow rows[] = {{1, "A"}, {2, "B"}, {3, "AB"}, {4, "C"}, {5, "AC"}, {6, "BC"}, {7, "ABC"}};
    return {"Wifi.Antenna", rows};
}

EnumTable DescribeEnum(EAntennaDiversity) {
    static constexpr EnumRow rows[] = {
        {0, "Auto", "Wifi.AntennaDiversity.Auto"},
        {1, "1", "Wifi.AntennaDiversity.1"},
        {2, "2", "Wifi.AntennaDiversity.2"},
    };
    return {"Wifi.AntennaDiversity", rows};
}

EnumTable DescribeEnum(EMode) {
    static constexpr EnumRow rows[] = {
        {0, "Idle", "Wifi.None"},
        {1, "WiFi Modulated Tx", "Wifi.Tx"},
        {2, "WiFi Sine Wave", "Wifi.SineWave"},
        {3, "WiFi Continuous Rx", "Wifi.Rx"},
        {4, "WiFi Rx Sensitivity", "Wifi.RxSensitivity"},
    };
    return {"Wifi.WorkMode", rows};
}

EnumTable DescribeEnum(EPowerMode) {
    static constexpr EnumRow rows[] = {
        {1, "Wifi.PowerControl", "Power control"},
        {2, "Wifi.DriverControl", "Automatic driver settings"},
    };
    return {"Wifi.PowerMode", rows};
}

EnumTable DescribeEnum(ESendPacketsMode) {
    static constexpr EnumRow rows[] = {
        {0, "Off", "Wifi.ModeOff"},
        {1, "Burst", "Wifi.Burst"},
        {2, "Unlimited", "Wifi.Unlimited"},
    };
    return {"Wifi.SendPacketsMode", rows};
}

EnumTable DescribeEnum(EFreqMode) {
    static constexpr EnumRow rows[] = {{0, " MHz"}, {1, " KHz"}};  // to stand right behind a number
    return {"Wifi.FreqMode", rows};
}

EnumTable DescribeEnum(EPA_CORE_MODE) {
    static constexpr EnumRow rows[] = {{0, "Default"}, {1, "Full"}, {2, "3/4"}, {3, "Half"}, {4, "1/4"}};
    return {"Wifi.Tx.PaCoreMode", rows};
}

EnumTable DescribeEnum(ERegulatoryState) {
    static constexpr EnumRow rows[] = {{0, "OpenRegulatory"}, {1, "ClosedRegulatory"}};
    return {"Wifi.RegulatoryState", rows};
}

EnumTable DescribeEnum(EResourceUnit) {
    static constexpr EnumRow rows[] = {
        {0, "26 Tone (2M)", "2m"},     {1, "52 Tone (4M)", "4m"},         {2, "26 + 52 Tone (6M)", "6m"},
        {3, "106 Tone (8M)", "8m"},    {4, "26 + 106 Tone (10M)", "10m"}, {5, "242 Tone (20M)", "20m"},
        {6, "484 Tone (40M)", "40m"},  {7, "996 Tone (80M)", "80m"},      {8, "996x2 Tone (80M+80M)", "160m"},
        {9, "996x4 Tone (160M+160M)"},
    };
    return {"Wifi.ResourceUnit", rows};
}

EnumTable DescribeEnum(EGuardInterval) {
    static constexpr EnumRow rows[] = {
        {1, "800 uSec", "800uSec"},
        {2, "1600 uSec", "1600uSec"},
        {3, "3200 uSec", "3200uSec"},
    };
    return {"Wifi.GuardInterval", rows};
}

EnumTable DescribeEnum(ELtf) {
    static constexpr EnumRow rows[] = {
        {1, "HE 1xLTF", "1xLTF"},
        {2, "HE 2xLTF", "2xLTF"},
        {3, "HE 4xLTF", "4xLTF"},
    };
    return {"Wifi.LTF", rows};
}

EnumTable DescribeEnum(ELpiMode) {
    static constexpr EnumRow rows[] = {{0, "enabled"}, {1, "disabled"}, {2, "manual"}};
    return {"Wifi.LpiMode", rows};
}

}  // namespace BackEnd::Wifi
