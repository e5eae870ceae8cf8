// Channels, their selection for a device, line numbers, and the forms of chains and bandwidths.
#include "Device/ChannelDatabase.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "Support/Thrown.h"

namespace {

constexpr auto LowBand20 = ChannelTableId(0), HighBand20 = ChannelTableId(2), HighBand40 = ChannelTableId(3);

using Support::ThrownText;

TEST(ChannelDatabase, ATableIsThePlaceholderAndThePlansChannels) {
    std::ostringstream sizes;
    for (std::uint32_t id = 0; id < ChannelTableCount; ++id) {
        const auto rows = ChannelDatabase::Table(ChannelTableId(id));
        EXPECT_EQ(rows[0], ChannelRow{}) << id;
        sizes << rows.size() << ' ';
    }
    EXPECT_EQ(sizes.str(), "15 10 38 19 10 5 60 30 15 8 7 ");
    EXPECT_EQ(ChannelDatabase::Table(ChannelTableId(0))[14], (ChannelRow{14, 2484}));
    EXPECT_TRUE(ChannelDatabase::Table(static_cast<ChannelTableId>(11)).empty());
    EXPECT_TRUE(ChannelDatabase::IsBandSupportedForDevice(static_cast<ChannelTableId>(77), 2, 5));
    std::ostringstream order;
    for (const ChannelTableId id : ChannelDatabase::SelectionOrder)
        order << id << ' ';
    EXPECT_EQ(order.str(), "0 2 6 1 3 7 4 8 5 9 10 ");
}

TEST(ChannelDatabase, AChannelIsFoundInItsTableOnly) {
    EXPECT_EQ(ChannelDatabase::GetChannelInfoByChannel(37, 0, 2), 6135.0);
    EXPECT_EQ(ChannelDatabase::GetChannelInfoByChannel(31, 4, 0), 6105.0) << "320 MHz ignores the band";
    EXPECT_EQ(ChannelDatabase::GetChannelIndex(36, 0, 1), 1);
    EXPECT_EQ(ChannelDatabase::GetChannelIndex(40, 0, 1), 2);
    const struct {
        int channel;
        std::uint32_t bandwidth, band;
    } absent[] = {{36, 2, 1}, {36, 0, 2}, {0, 0, 0}, {1, 2, 0}, {1, 3, 0}, {1, 5, 0}, {1, 0, 3}, {-1, 0, 0}};
    for (const auto& row : absent) {
        const auto expectAbsent = [&](auto lookUp) {
            EXPECT_EQ(ThrownText([&] { lookUp(row.channel, row.bandwidth, row.band); }),
                      "Channel " + std::to_string(row.channel) + " not found");
        };
        expectAbsent(ChannelDatabase::GetChannelInfoByChannel);
        expectAbsent(ChannelDatabase::GetChannelIndex);
        expectAbsent(ChannelDatabase::GetChannelIndex_802_11);
    }
    EXPECT_EQ(ThrownText([] { ChannelDatabase::GetChannelInfoByChannel(36.5, 0, 1); }), "Channel 36.5 not found");
    EXPECT_EQ(ThrownText([] { ChannelDatabase::GetChannelIndex(36, 6, 1); }),
              "unknown channel. Details: channel = 36 band = 1, bandwidth = 6");
}

TEST(ChannelDatabase, EveryLineOfAChannelLeadsBackToItAndEveryOtherNumberToNone) {
    std::set<int> lines;
    for (std::uint32_t band = 0; band < 3; ++band)
        for (std::uint32_t bandwidth = 0; bandwidth < 5; ++bandwidth)
            for (int channel = 1; channel <= 240; ++channel) {
                if (bandwidth == 4 && band != 2) continue;
                int line = 0;
                ThrownText([&] { line = ChannelDatabase::GetChannelIndex_802_11(channel, bandwidth, band); });
                if (line == 0) continue;
                lines.insert(line);
                const auto back = ChannelDatabase::GetChannelFromLineNumber(line);
                ASSERT_TRUE(back) << line;
                EXPECT_TRUE(back->band == band && back->bandwidth == bandwidth && back->channel == channel) << line;
                const int row = ChannelDatabase::GetChannelIndex(channel, bandwidth, band);
                EXPECT_EQ(ChannelDatabase::GetChannelFromIndex(row, band, bandwidth), channel);
            }
    EXPECT_TRUE(lines.size() == 206 && lines.contains(216));  // 217 rows, 11 of them placeholders
    for (int line = -3; line < 230; ++line)
        EXPECT_EQ(ChannelDatabase::GetChannelFromLineNumber(line).has_value(), lines.contains(line)) << line;
    for (int line : {INT32_MIN, INT32_MAX})
        EXPECT_FALSE(ChannelDatabase::GetChannelFromLineNumber(line));
    for (int row : {-1, 0, 15, INT32_MIN, INT32_MAX})
        EXPECT_EQ(ChannelDatabase::GetChannelFromIndex(row, 0, 0), 0);
    EXPECT_EQ(ChannelDatabase::GetChannelFromIndex(1, 0, 2), 0);
}

TEST(ChannelDatabase, ASelectionKeepsThePlaceholderTheSupportedRowsAndEveryAnswer) {
    ChannelTables tables;
    ChannelFlags flags;
    const auto even = [](std::uint32_t channel) { return channel % 8 == 4; };
    for (const ChannelTableId id : {HighBand20, HighBand40, LowBand20})
        ChannelDatabase::AddSupportedRows(ChannelDatabase::Table(id).first(3), id, ChannelDatabase::BandOf(id),
                                          ChannelDatabase::BandwidthOf(id), even, tables, flags);
    EXPECT_EQ(tables[HighBand20], (std::vector<ChannelRow>{{0, 0}, {36, 5180}}));
    EXPECT_EQ(tables[HighBand40], (std::vector<ChannelRow>{{0, 0}}));
    flags[{36, 1}][4] = true;
    EXPECT_EQ(ChannelDatabase::FlagsToString(flags),
              "(1,LB),0,0,0,0,0\n(2,LB),0,0,0,0,0\n(36,HB),1,0,0,0,1\n(38,HB),0,0,0,0,0\n(40,HB),0,0,0,0,0\n"
              "(46,HB),0,0,0,0,0\n");
    ChannelDatabase::AddSupportedRows(ChannelDatabase::Table(LowBand20), LowBand20, 0, 7, even, tables, flags);
    ChannelDatabase::AddSupportedRows({}, LowBand20, 0, 0, even, tables, flags);
}

TEST(ChannelDatabase, ChainsAndWidthsConvertBothWaysAndRefuseTheRest) {
    std::string widths;
    for (std::uint32_t k = 0; k < 7; ++k)
        widths += ChannelDatabase::BandwidthEnumToValue(k) + " ";
    EXPECT_EQ(widths, "20 40 80 160 320   ");
    for (const auto& [width, code] :
         {std::pair{20, 0u}, {40, 1}, {80, 2}, {160, 3}, {320, 4}, {0, 0}, {21, 0}, {-40, 0}})
        EXPECT_EQ(ChannelDatabase::BandwidthValueToEnum(width), code) << width;
    for (const auto& [chain, code] : {std::pair{"A", 1u}, {"B", 2}, {"AB", 3}}) {
        EXPECT_EQ(ChannelDatabase::ConvertChainU32ToString(code), chain);
        EXPECT_EQ(ChannelDatabase::ConvertChainStringToU32(chain), code);
    }
    for (const std::string text : {"", "a", "BA", "C", "A "})
        EXPECT_EQ(ThrownText([&] { ChannelDatabase::ConvertChainStringToU32(text); }),
                  "Chain " + text + " is not supported");
    EXPECT_EQ(ThrownText([] { ChannelDatabase::ConvertChainU32ToString(4); }), "Chain 4 is not supported");
}

TEST(ChannelDatabase, AntennasFollowTheCardAndThenTheHardware) {
    // card, hardware; mask, current chain, selection; the three enables. 9 and 7 are what stood there before.
    for (const std::string expected : {"1 11 1 9 3 777", "2 5 1 9 3 777", "4 26 3 9 3 777", "32 5 3 9 3 777",
                                       "64 5 2 2 2 010", "0 11 1 1 1 100", "0 24 1 1 1 100", "64 32 9 9 9 777"}) {
        std::istringstream text(expected);
        std::uint32_t card = 0, hardware = 0;
        text >> card >> hardware;
        quayCommand::RxConfig rx;
        rx.antennaMask = rx.m_currChain = rx.antennaSelection = 9;
        quayCommand::AdcConfig adc;
        adc.chainAEnable = adc.chainBEnable = adc.chainCEnable = 7;
        ChannelDatabase::GuiToHWAnts(card, hardware, rx, adc);
        std::ostringstream found;
        found << card << ' ' << hardware << ' ' << rx.antennaMask << ' ' << rx.m_currChain << ' ' << rx.antennaSelection
              << ' ' << int(adc.chainAEnable) << int(adc.chainBEnable) << int(adc.chainCEnable);
        EXPECT_EQ(found.str(), expected);
    }
    quayCommand::RxConfig rx;
    quayCommand::AdcConfig adc;
    EXPECT_EQ(ThrownText([&] { ChannelDatabase::GuiToHWAnts(4, 32, rx, adc); }),
              "unexpected device type / hardware is not supported (HW ID:32)");
}

}  // namespace
