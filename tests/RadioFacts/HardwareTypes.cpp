// The rows read the other way round: which hardware types have a property.
#include "HardwareTypes.h"

#include <gtest/gtest.h>

#include <string>

using namespace RadioFacts;

namespace {

/// The numbers below 300 whose row, or stand-in, has the property.
template <typename Property>
std::string NumbersWith(Property has) {
    std::string numbers;
    for (std::uint32_t number = 0; number < 300; ++number)
        if (has(HardwareOf(number))) numbers += (numbers.empty() ? "" : " ") + std::to_string(number);
    return numbers;
}

template <typename Column, typename Value>
std::string NumbersWith(Column HardwareType::*column, Value value) {
    return NumbersWith([&](const HardwareType& row) { return row.*column == value; });
}

TEST(HardwareTypes, HaveTheirPropertiesAndNoOther) {
    std::string known;
    for (std::uint32_t number = 0; number < 300; ++number)
        if (FindHardware(number)) known += std::to_string(number) + " ";
    EXPECT_EQ(known, "5 6 7 8 9 11 12 13 14 15 16 17 20 21 22 23 24 25 26 27 28 29 30 ");

    const auto family = &HardwareType::family;
    EXPECT_EQ(NumbersWith(family, ChipFamily::ElmOak), "5 6 7 8");
    EXPECT_EQ(NumbersWith(family, ChipFamily::FirYew), "16 17 20 24");
    EXPECT_EQ(NumbersWith(family, ChipFamily::Ash2), "21 25 28");
    EXPECT_EQ(NumbersWith(family, ChipFamily::Bay), "22");
    EXPECT_EQ(NumbersWith(family, ChipFamily::Ash4), "23");
    EXPECT_EQ(NumbersWith(family, ChipFamily::Pine), "26 27");
    EXPECT_EQ(NumbersWith(family, ChipFamily::Rowan), "29");
    EXPECT_EQ(NumbersWith(&HardwareType::capture, CaptureClass::Sorrel), "0 1 2 3 4 5 6 7 8 10");
    EXPECT_EQ(NumbersWith(&HardwareType::capture, CaptureClass::Tansy), "9");
    EXPECT_EQ(NumbersWith(&HardwareType::capture, CaptureClass::Clover), "26 27 29 30");
    EXPECT_EQ(NumbersWith(&HardwareType::preparation, Preparation::A), "21 23");
    EXPECT_EQ(NumbersWith(&HardwareType::preparation, Preparation::B), "26 27 29 30");
    EXPECT_EQ(NumbersWith(&HardwareType::gainLayout, GainLayout::B), "25 28");
    EXPECT_EQ(NumbersWith(&HardwareType::gainLayout, GainLayout::C), "26 27 29 30");
    EXPECT_EQ(NumbersWith(&HardwareType::nvm, NvmDocument::Teak), "11 12 13 14 15");
    EXPECT_EQ(NumbersWith(&HardwareType::nvm, NvmDocument::Fir), "16 17 24");
    EXPECT_EQ(NumbersWith(&HardwareType::nvm, NvmDocument::Yew), "20");
    EXPECT_EQ(NumbersWith(&HardwareType::nvm, NvmDocument::Ash), "21 25 28");
    EXPECT_EQ(NumbersWith(&HardwareType::nvm, NvmDocument::Bay), "22");
    EXPECT_EQ(NumbersWith(&HardwareType::nvm, NvmDocument::Ash4), "23");
    EXPECT_EQ(NumbersWith(&HardwareType::antenna, Antenna::OnlyA), "11 13 14 15 16 17 20 24");
    EXPECT_EQ(NumbersWith(&HardwareType::antenna, Antenna::OnlyB), "5");
    EXPECT_EQ(NumbersWith(&HardwareType::boardQuery, BoardQuery::AtStart), "21 22 23 25 28 29");
    EXPECT_EQ(NumbersWith(&HardwareType::boardQuery, BoardQuery::Allowed), "26 27");
    EXPECT_EQ(NumbersWith(&HardwareType::hasTripleGainSteps, true), "11 13 16 17 20 24");
    const auto starts = [](const HardwareType& row) {
        return row.startCountry && row.startCountry == std::string("US");
    };
    EXPECT_EQ(NumbersWith(starts), "21 22 23 26 27 29 30");
}

TEST(HardwareTypes, HaveTheirSampleRatesAtEachWidth) {
    const auto withRates = [](const std::array<double, 6>& mhz) {
        return NumbersWith([&](const HardwareType& row) {
            for (std::uint32_t bandwidth = 0; bandwidth < mhz.size(); ++bandwidth)
                if (SampleRateMhz(row.rates, bandwidth) != mhz[bandwidth]) return false;
            return true;
        });
    };
    EXPECT_EQ(withRates({80, 80, 80, 0, 0, 0}), "6 7 9");
    EXPECT_EQ(withRates({40, 40, 80, 160, 320, 0}), "11 12 13 14 15 16 17 20 21 22 23 24 25 26 27 28 29 30");
    EXPECT_EQ(withRates({}).substr(0, 23), "0 1 2 3 4 5 8 10 18 19 ");
}

TEST(CardsAndHardware, DecideTogetherWhatCanBeTuned) {
    // The hardware types for a card that limits nothing, the cards for hardware that limits nothing.
    const auto check = [](std::uint32_t band, std::uint32_t bandwidth, const char* hardware, const char* cards) {
        const ChannelSet set{band, bandwidth, {}};
        EXPECT_EQ(NumbersWith([&](const HardwareType& row) {
                      return FindHardware(row.number) == &row && CanTune(row.number, 4, set);
                  }),
                  hardware)
            << band << ' ' << bandwidth;
        std::string found;
        for (std::uint32_t card = 0; card < 70; ++card)
            if (CanTune(26, card, set)) found += std::to_string(card) + " ";
        if (*cards)
            EXPECT_EQ(found, cards) << band << ' ' << bandwidth;
        else
            EXPECT_TRUE(CanTune(26, 2, set) && CanTune(26, 99, set)) << band << ' ' << bandwidth;
    };
    const char* all = "5 6 7 8 9 11 12 13 14 15 16 17 20 21 22 23 24 25 26 27 28 29 30";
    const char* wide = "21 22 23 26 27 29 30";
    check(0, 0, all, "");
    check(0, 1, all, "");
    check(1, 0, all, "0 1 4 8 64 ");
    check(1, 1, all, "0 1 4 8 64 ");
    check(1, 2, "6 7 9 11 13 14 15 16 17 20 21 22 23 24 26 27 29 30", "0 1 4 8 64 ");
    check(1, 3, "11 13 16 20 21 22 23 26 27 29 30", "0 1 4 8 ");
    check(2, 0, wide, "");
    check(2, 3, wide, "");
    check(2, 4, "26 27 29", "");
    EXPECT_TRUE(CanTune(32, 4, {1, 1, {}}) && !CanTune(32, 4, {1, 2, {}}) && !CanTune(32, 4, {2, 0, {}}))
        << "unknown hardware";
    std::string masks;
    for (std::uint32_t card = 0; card < 70; ++card)
        if (CardOf(card).twoChainMask)
            masks += std::to_string(card) + ":" + std::to_string(CardOf(card).twoChainMask) + " ";
    EXPECT_EQ(masks, "1:1 2:1 4:3 8:3 32:3 ");
}

}  // namespace
