// Limits: what a file may say, where its limits hold, and the verdict on a reading.
#include "Limits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace TarnMeasure;

namespace {

Limits Parsed(const char* csv) {
    auto limits = Limits::Parse(csv);
    EXPECT_TRUE(limits) << (limits ? "" : limits.Reason());
    return limits ? *limits : Limits();
}

}  // namespace

TEST(Limits, TheMostParticularRowHolds) {
    const Limits limits = Parsed(
        "\xEF\xBB\xBF# of the lab\r\n"
        "band, channel ,bandwidth_mhz,limit_dbm\r\n"
        "2.4,,,-80\n"
        "2.4,6,,-75.5\n"
        "2.4,6,40,-70\n"
        "5,,80,-60\n");
    const std::tuple<const char*, int, double, std::optional<double>> cases[] = {
        {"2.4", 1, 20, -80}, {"2.4", 6, 20, -75.5}, {"2.4", 6, 40, -70},          {"5.2", 42, 80, -60},
        {"5", 42, 80, -60},  {"6-7", 7, 80, {}},    {"5.2", 36, 20, std::nullopt}};
    for (const auto& [band, channel, width, expected] : cases)
        EXPECT_EQ(limits.ChannelDbm(band, channel, width), expected) << band << " " << channel << " " << width;
    EXPECT_EQ(Limits::Read(" -75 ")->ChannelDbm("6-7", 7, 320), -75);
}

TEST(Limits, ALineIsStraightBetweenItsPointsAndNowhereElse) {
    const Limits limits = Parsed("frequency_mhz,limit_dbm\n2400,-100\n2410,-80\n2420,-90");
    const std::pair<double, std::optional<double>> cases[] = {{2399.9, {}}, {2400, -100}, {2405, -90}, {2410, -80},
                                                              {2415, -85},  {2420, -90},  {2420.1, {}}};
    for (const auto& [mhz, expected] : cases)
        EXPECT_EQ(limits.LineDbm(mhz), expected) << mhz;
    Reading reading{.band = "2.4",
                    .channel = 1,
                    .bandwidth_mhz = 20,
                    .power_dbm = 50,
                    .graph = {},
                    .first_mhz = 2395,
                    .step_mhz = 5,
                    .invalid = {}};
    EXPECT_FALSE(limits.Judge(reading, 0)) << "no bin lies under the line";
    reading.graph = {0, -101, -92, -79.5, -95, -99, 0};
    const auto worst = limits.Judge(reading, 0);
    ASSERT_TRUE(worst);
    EXPECT_EQ(worst->verdict, Verdict::Fail);
    EXPECT_EQ(worst->frequency_mhz, 2410);
    EXPECT_NEAR(worst->Excess(), 0.5, 1e-9);
}

TEST(Limits, TheVerdictNeverPassesWhatIsNoSoundLevel) {
    const Limits limits = *Limits::OfLevel(-70);
    const double nan = std::nan("");
    const std::tuple<double, double, const char*, Verdict> cases[] = {
        {-70, 0, "", Verdict::Pass},
        {-69.999, 0, "", Verdict::Fail},
        {-73, 3, "", Verdict::Pass},
        {-72.9, 3, "", Verdict::Margin},
        {-70, 3, "", Verdict::Margin},
        {-90, 3, "overloaded", Verdict::Invalid},
        {-10, 0, "x", Verdict::Invalid},
        {nan, 0, "", Verdict::Invalid},
        {-std::numeric_limits<double>::infinity(), 3, "", Verdict::Pass}};
    for (const auto& [power, margin, invalid, expected] : cases) {
        Reading reading;
        reading.power_dbm = power;
        reading.invalid = invalid;
        EXPECT_EQ(limits.Judge(reading, margin)->verdict, expected) << power << " " << margin << " " << invalid;
    }
    EXPECT_EQ(Graver(Verdict::Fail, Verdict::Invalid), Verdict::Invalid);
    EXPECT_STREQ(VerdictText(Graver(Verdict::Margin, Verdict::Pass)), "MARGIN");
}

TEST(Limits, ABadFileIsRefusedWithItsLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "line 1: there is no limit"},
        {"band,limit_dbm\n", "line 1: there is no limit"},
        {"band,level\n", "line 1: 'level' is no column"},
        {"band,band,limit_dbm\n", "line 1: column 'band' stands twice"},
        {"channel,limit_dbm\n", "line 1: limit_dbm needs band"},
        {"band,frequency_mhz,limit_dbm\n", "line 1: limit_dbm needs band"},
        {"band\n2.4\n", "line 1: there is no column limit_dbm"},
        {"band,limit_dbm\n2.4,-80,\n", "line 2: 3 fields under 2 columns"},
        {"band,limit_dbm\n\n3,-80\n", "line 3: '3' is no band"},
        {"band,limit_dbm\n2.4,-80x\n", "line 2: '-80x' is no level"},
        {"band,limit_dbm\n2.4,nan\n", "line 2: 'nan' is no level"},
        {"band,limit_dbm\n2.4,-8\n2.4,-9\n", "line 3: a limit for the same place stands before"},
        {"band,channel,limit_dbm\n2.4,1.5,-9\n", "line 2: '1.5' is no channel number"},
        {"frequency_mhz,limit_dbm\n2400,-9\n2400,-9\n", "line 3: the frequencies must rise"},
        {"frequency_mhz,limit_dbm\n-1,-9\n", "line 2: '-1' is no frequency"},
        {"frequency_mhz,limit_dbm\n2400,-9\n", "line 2: a line needs two points"}};
    for (const auto& [csv, expected] : cases) {
        const auto limits = Limits::Parse(csv);
        ASSERT_FALSE(limits) << csv;
        EXPECT_TRUE(limits.Reason().starts_with(expected)) << limits.Reason();
    }
    for (const char* text : {"", "/nowhere", "/dev/null", "/tmp", "nan", "1e9", "-251"})
        EXPECT_FALSE(Limits::Read(text)) << text;
}
