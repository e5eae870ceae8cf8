// The country codes "AA" to "ZZ".
#include "WifiDefs.h"

namespace BackEnd::Wifi {

namespace {

constexpr std::int32_t letterCount = 26;

void AddCountries(CoreTypes::TextMaps& texts) {
    for (std::int32_t first = 0; first < letterCount; ++first)
        for (std::int32_t second = 0; second < letterCount; ++second) {
            const char code[] = {static_cast<char>('A' + first), static_cast<char>('A' + second)};
            texts.Add(first * letterCount + second, {code, sizeof code});
        }
}

}  // namespace

CoreTypes::EnumTable DescribeEnum(EMCC) {
    return {"Wifi.MCC", {}, AddCountries};
}

}  // namespace BackEnd::Wifi
