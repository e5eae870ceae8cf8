// The rates: rows where the texts have no rule, loops where they have one. Value 46 is no rate.
#include "WifiDefs.h"

namespace BackEnd::Wifi {

namespace {

struct RateRun {
    const char* prefix;
    std::int32_t first;
    std::int32_t count;
};

/// Rates whose text is the prefix and the number within the run.
constexpr RateRun runs[] = {{"HT", 12, 24}, {"VHT", 36, 10}, {"EHT", 63, 16}};

void AddRuns(CoreTypes::TextMaps& texts) {
    for (const RateRun& run : runs)
        for (std::int32_t index = 0; index < run.count; ++index)
            texts.Add(run.first + index, run.prefix + std::to_string(index));
}

}  // namespace

CoreTypes::EnumTable DescribeEnum(ERate) {
    static constexpr CoreTypes::EnumRow rows[] = {
        {0, "1 Mbps", "1"},   {1, "2 Mbps", "2"},    {2, "5.5 Mbps", "5.5"},
        {3, "11 Mbps", "11"}, {4, "6 Mbps", "6"},    {5, "9 Mbps", "9"},
        {6, "12 Mbps", "12"}, {7, "18 Mbps", "18"},  {8, "24 Mbps", "24"},
        {9, "36 Mbps", "36"}, {10, "48 Mbps", "48"}, {11, "54 Mbps", "54"},
        {47, "HE0"},          {48, "HE0_DCM"},       {49, "HE1"},
        {50, "HE1_DCM"},      {51, "HE2"},           {52, "HE3"},
        {53, "HE3_DCM"},      {54, "HE4"},           {55, "HE4_DCM"},
        {56, "HE5"},          {57, "HE6"},           {58, "HE7"},
        {59, "HE8"},          {60, "HE9"},           {61, "HE10"},
        {62, "HE11"},
    };
    return {"Wifi.Rate", rows, AddRuns};
}

}  // namespace BackEnd::Wifi
