// The flows' channel tables beside the radio vocabulary's channel sets: the same channels, and the same centres but
// one.
#include <gtest/gtest.h>

#include <array>
#include <set>

#include "Device/ChannelDatabase.h"
#include "WifiDefs.h"

namespace {

using namespace BackEnd::Wifi;

TEST(ChannelSets, HoldTheFlowsChannelsAndDifferInTheCentreOfChannel14Only) {
    constexpr std::array widths{EBandWidth::Width20, EBandWidth::Width40, EBandWidth::Width80, EBandWidth::Width160,
                                EBandWidth::Width320};
    std::size_t channels = 0;
    for (const ChannelTableId id : ChannelDatabase::SelectionOrder) {
        const std::uint32_t band = ChannelDatabase::BandOf(id), width = ChannelDatabase::BandwidthOf(id);
        SCOPED_TRACE(testing::Message() << "band " << band << ", width " << width);
        std::set<int> ours;
        for (const ChannelRow& row : ChannelDatabase::Table(id)) {
            if (row.channel == 0) continue;  // the placeholder
            const int channel = static_cast<int>(row.channel);
            ours.insert(channel);
            const bool isChannel14 = band == 0 && channel == 14;
            const unsigned centre = GetChannelFrequency(static_cast<unsigned>(channel), EBand(band));
            EXPECT_EQ(centre, isChannel14 ? 2477U : static_cast<unsigned>(row.frequency)) << "channel " << channel;
            EXPECT_TRUE(!isChannel14 || row.frequency == 2484);
        }
        EXPECT_EQ(ours, GetChannelSet(EBand(band), widths[width]));
        channels += ours.size();
    }
    EXPECT_EQ(channels, 206U);
}

}  // namespace
