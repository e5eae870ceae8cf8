// The plan against what its channels are: wide ones bonded from neighbours of 20 MHz, between the edges of the bands.
#include "ChannelPlan.h"

#include <gtest/gtest.h>

#include <set>

using namespace RadioFacts;

namespace {

using Channels = std::set<std::int32_t>;

Channels PlanOf(std::uint32_t band, std::uint32_t bandwidth) {
    Channels channels;
    if (const ChannelSet* set = FindChannelSet(band, bandwidth)) {
        ForEachChannel(*set, [&](std::int32_t channel) { channels.insert(channels.end(), channel); });
        EXPECT_EQ(channels.size(), ChannelCount(*set));
    }
    return channels;
}

/// @param first, last  the 20 MHz channels of one run without gaps
Channels Bonded(std::int32_t first, std::int32_t last, std::int32_t mhz, std::int32_t step) {
    Channels channels;
    const std::int32_t neighbours = mhz / 20;
    for (std::int32_t low = first; low + (neighbours - 1) * 4 <= last; low += step)
        channels.insert(low + (neighbours - 1) * 2);
    return channels;
}

Channels Expected(std::uint32_t band, std::int32_t mhz) {
    const std::int32_t stride = mhz / 5;  // channel numbers are 5 MHz apart
    if (band == 0) {
        // Any channel may be a control channel; a 40 MHz channel needs both of its halves within 1 to 13.
        if (mhz == 20) return Bonded(1, 14, 20, 1);
        return mhz == 40 ? Bonded(1, 13, 40, 1) : Channels();
    }
    Channels channels;
    if (band == 2) {
        channels = Bonded(1, 233, mhz, stride);
        if (mhz == 320) channels.merge(Bonded(33, 233, mhz, stride));  // these overlap by half
    } else if (mhz <= 160) {
        channels = Bonded(36, 144, mhz, stride);
        channels.merge(Bonded(149, 181, mhz, stride));
    }
    return channels;
}

TEST(ChannelPlan, BondsEachBandsWideChannelsFromNeighbours) {
    std::size_t channels = 0;
    std::int32_t mhz = 20;
    for (std::uint32_t bandwidth = 0; bandwidth < 5; ++bandwidth, mhz *= 2) {
        EXPECT_EQ(WidthMhz(bandwidth), static_cast<std::uint32_t>(mhz));
        EXPECT_EQ(FindBandwidth(std::to_string(mhz)), bandwidth);
        for (std::uint32_t band = 0; band < 3; ++band) {
            const Channels plan = PlanOf(band, bandwidth);
            EXPECT_EQ(plan, Expected(band, mhz)) << band << " " << mhz;
            for (std::int32_t channel = -5; channel < 260; ++channel)
                EXPECT_EQ(HasChannel(band, bandwidth, static_cast<std::uint32_t>(channel)), plan.contains(channel));
            channels += plan.size();
        }
    }
    EXPECT_EQ(channels, 206U);
    EXPECT_TRUE(PlanOf(3, 0).empty() && PlanOf(0, 5).empty() && WidthMhz(5) == 0);
}

TEST(ChannelPlan, CentresFollowTheirBandButForOneChannel) {
    const struct {
        std::uint32_t band, channel;
        double mhz, ruleMhz;
    } anchors[] = {{0, 1, 2412, 2412},   {0, 13, 2472, 2472},  {0, 14, 2484, 2477}, {1, 14, 5070, 5070},
                   {1, 36, 5180, 5180},  {1, 181, 5905, 5905}, {2, 1, 5955, 5955},  {2, 37, 6135, 6135},
                   {2, 233, 7115, 7115}, {2, 14, 6020, 6020},  {3, 1, 0, 0}};
    for (const auto& anchor : anchors) {
        EXPECT_EQ(CentreMhz(anchor.band, anchor.channel), anchor.mhz) << anchor.band << " " << anchor.channel;
        EXPECT_EQ(RuleCentreMhz(anchor.band, anchor.channel), anchor.ruleMhz) << anchor.band << " " << anchor.channel;
    }
}

TEST(ChannelPlan, NamesAreFoundAndOthersAreNot) {
    EXPECT_EQ(BandChoices, "2.4|5.2|6-7");
    EXPECT_EQ(BandwidthChoices, "20|40|80|160|320");
    EXPECT_TRUE(FindBand("2.4") == 0U && FindBand("5.2") == 1U && FindBand("5") == 1U && FindBand("6-7") == 2U);
    EXPECT_TRUE(!FindBand("") && !FindBand("6") && !FindBandwidth("") && !FindBandwidth("30"));
    EXPECT_TRUE(LowestBandOf(1) == 0 && LowestBandOf(2) == 1 && LowestBandOf(3) == 1 && LowestBandOf(4) == 2);
}

}  // namespace
