#include <gtest/gtest.h>

#include "Support/Thrown.h"
#include "WifiDefs.h"

namespace {

using namespace BackEnd::Wifi;
using Support::LocatedText;
using enum EBand;
using enum EBandWidth;

constexpr EBand bands[] = {Band2_4GHz, Band5GHz, Band6GHz};
constexpr EBandWidth badWidth{3};  // no width has this code

struct Width {
    EBandWidth width;
    int mhz;
    int tones;  // of the null data packet: 18 for each 20 MHz
};
constexpr Width widths[] = {{Width10, 10, 0},  {Width20, 20, 18},    {Width40, 40, 36},
                            {Width80, 80, 72}, {Width160, 160, 144}, {Width320, 320, 288}};

TEST(Channels, OfABandAndWidthAreThoseOfThePlan) {
    EXPECT_EQ(GetChannelSet(Band5GHz, Width80), (std::set<int>{42, 58, 74, 90, 106, 122, 138, 155, 171}));
    EXPECT_EQ(GetChannelSet(Band6GHz, Width320), (std::set<int>{31, 63, 95, 127, 159, 191}));
    EXPECT_EQ(GetChannelSet(Band2_4GHz, Width40).size(), 9u);
    for (const EBand band : bands)
        EXPECT_TRUE(GetChannelSet(band, Width10).empty() && !GetChannelSet(band, Width20).empty());
    EXPECT_TRUE(GetChannelSet(Band2_4GHz, Width80).empty() && GetChannelSet(Band5GHz, Width320).empty());
    EXPECT_EQ(&GetChannelSet(Band5GHz, Width80Of160), &GetChannelSet(Band5GHz, Width160));
}

TEST(Channels, BelongToTheFirstBandThatHasTheirNumber) {
    const std::pair<int, EBand> expected[] = {{-1, noBand},    {0, noBand},     {1, Band2_4GHz}, {14, Band2_4GHz},
                                              {15, Band6GHz},  {36, Band5GHz},  {37, Band6GHz},  {181, Band5GHz},
                                              {183, Band6GHz}, {233, Band6GHz}, {234, noBand}};
    for (const auto& [channel, band] : expected)
        EXPECT_EQ(GetChannelBand(channel), band) << channel;
}

TEST(Channels, HaveCentresAndTitlesByTheRuleOfTheirBand) {
    EXPECT_EQ(GetChannelTitle(36, Band5GHz, Width20), "36 / 5180 MHz");
    EXPECT_EQ(GetChannelTitle(3, Band2_4GHz, Width40), "3F / 2422 MHz");
    EXPECT_EQ(GetChannelTitle(3, Band2_4GHz, Width20), "3 / 2422 MHz");
    EXPECT_EQ(GetChannelTitle(191, Band6GHz, Width320), "191 / 6905 MHz");
    EXPECT_EQ(GetChannelFrequency(14, Band2_4GHz), 2477u) << "by the rule, not by the plan's exception";
    for (const unsigned none : {0u, 300u, 235u, 0xFFFFFFFFu})
        EXPECT_EQ(GetChannelFrequency(none, Band5GHz), 0u);
    EXPECT_EQ(GetChannelTitle(300, Band6GHz, Width10), "300 / 0 MHz");
    EXPECT_EQ(GetChannelTitle(6, Band2_4GHz, EBandWidth{2081}), "6F / 2437 MHz");
}

TEST(Widths, HaveOneToneSetAndOnePositionForEachControlChannel) {
    for (const Width& width : widths) {
        if (width.mhz == 10) continue;
        const std::set<int>& tones = GetNdpToneSet(width.width);
        EXPECT_EQ(tones.size(), static_cast<std::size_t>(width.tones));
        EXPECT_TRUE(*tones.begin() == 1 && *tones.rbegin() == width.tones) << width.mhz;
    }
    // As many positions as control channels fit, but one alone needs no name: the lower half counts up from the lowest,
    // the upper half down from the highest, and the two in the middle have names of their own.
    const std::map<int, std::set<int>> positions{{0, {}},
                                                 {1, {}},
                                                 {2, {0, 15}},
                                                 {4, {0, 7, 8, 15}},
                                                 {8, {0, 1, 2, 7, 8, 13, 14, 15}},
                                                 {16, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}}};
    for (const auto& [value, text] : CoreTypes::MetaType<EBandWidth>::Get().Displays()) {
        int first = 0, second = 0;
        const int count = std::sscanf(text.c_str(), "%d/%d", &first, &second) == 2 ? second / first : first / 20;
        std::set<int> actual;
        for (const EControlChannel channel : GetSubChannels(static_cast<EBandWidth>(value)))
            actual.insert(static_cast<int>(channel));
        EXPECT_EQ(actual, positions.at(count)) << text;
    }
}

TEST(Modulations, ArePossibleWhereTheirStandardAllowsThem) {
    // A column each for 10, 20, 40, 80, 160, 320 MHz; a row each for 2.4, 5, 6-7 GHz.
    const std::pair<EModulation, const char*> expected[] = {
        {EModulation::OfdmHe, ".xxxx. .xxxx. .xxxx."},  {EModulation::OfdmVht, "...... .xxxx. .xxxx."},
        {EModulation::OfdmEht, "...... ...... xxxxxx"}, {EModulation::OfdmHt, "xxx... xxx... xxx..."},
        {EModulation::Ofdm, "xx.... xx.... xx...."},    {EModulation::Cck, ".x.... ...... ......"},
    };
    for (const auto& [modulation, table] : expected) {
        std::string possible;
        for (const EBand band : bands) {
            if (!possible.empty()) possible += ' ';
            for (const Width& width : widths)
                possible += IsModulationPossible(modulation, band, width.width) ? 'x' : '.';
        }
        EXPECT_EQ(possible, table) << static_cast<int>(modulation);
    }
    EXPECT_TRUE(IsModulationPossible(EModulation::OfdmHe, Band5GHz, EBandWidth{2180})) << "the base width counts";
}

TEST(Failures, NameTheFunctionAndReachNoTable) {
    const std::pair<const char*, void (*)()> takers[] = {
        {"GetChannelSet", [] { GetChannelSet(Band5GHz, badWidth); }},
        {"GetChannelTitle", [] { GetChannelTitle(36, Band5GHz, badWidth); }},
        {"GetNdpToneSet", [] { GetNdpToneSet(badWidth); }},
        {"GetSubChannels", [] { GetSubChannels(badWidth); }}};
    for (const auto& [name, call] : takers)
        EXPECT_EQ(LocatedText(call), std::string("Unknown Bandwidth in BackEnd::Wifi::") + name);
    EXPECT_EQ(LocatedText([] { IsModulationPossible(EModulation{6}, Band5GHz, Width20); }),
              "Unknown modulation - 6 in BackEnd::Wifi::IsModulationPossible");
    for (const EBand band : {noBand, EBand{-1}}) {
        EXPECT_NE(LocatedText([=] { GetChannelSet(band, Width20); }), "nothing thrown");
        EXPECT_NE(LocatedText([=] { GetChannelFrequency(36, band); }), "nothing thrown");
    }
}

}  // namespace
