// What stands at the antenna is what a line answers: one tone of -60 dBm through the whole plug-in.
#include "FlowsTest.h"
#include "Numbers.h"

namespace {

class FlowsLevelTest : public FlowsTest {
protected:
    FlowsLevelTest() {
        m_air = "sim:" + Path("tones.json");
        Write("tones.json", R"({"chain_offsets_db": [0, -3], "tones": [
            {"frequency_mhz": 2439.5, "level_dbm": -60}, {"frequency_mhz": 5182.5, "level_dbm": -60},
            {"frequency_mhz": 5757.5, "level_dbm": -60}, {"frequency_mhz": 6137.5, "level_dbm": -60},
            {"frequency_mhz": 5310.0, "level_dbm": -60}, {"frequency_mhz": 6420.0, "level_dbm": -60}]})");
    }
};

TEST_F(FlowsLevelTest, AToneOfMinus60DbmReadsSoOnEachChipFamilyAtEachGainBandAndChain) {
    // Each family, and both boards of those that have two. Types with fewer bands or chains refuse the others.
    const std::vector<std::string> adapters{"hw=6",        "hw=9",        "hw=12", "hw=16",       "hw=21,sku=1",
                                            "hw=21,sku=2", "hw=22,sku=1", "hw=23", "hw=23,sku=2", "hw=25",
                                            "hw=26",       "hw=27,sku=2", "hw=29", "hw=30"};
    for (const std::string& adapter : adapters) {
        Start(adapter + ",samples=8192");
        int readings = 0;
        // Type 9's engine lifts the edges of a channel, and its simulated receiver doesn't roll off there.
        const double tolerance = adapter == "hw=9" ? 1.5 : 1.0;
        for (const char* tuning : {"-band 2.4 -bandwidth 20 -channel 6", "-band 5.2 -bandwidth 20 -channel 36",
                                   "-band 5.2 -bandwidth 40 -channel 151", "-band 6-7 -bandwidth 20 -channel 37",
                                   "-band 5.2 -bandwidth 80 -channel 58", "-band 6-7 -bandwidth 320 -channel 95"})
            for (const std::string chain : {"A", "B"})
                for (const char* gain : {"-internal_gain 0 -preLNA_resistor false", "-internal_gain 2",
                                         "-internal_gain 3 -preLNA_resistor true"}) {
                    const std::string line = std::string(tuning) + " -chain " + chain + " " + gain + " -trigger_now";
                    SCOPED_TRACE(adapter + " " + line);
                    if (Run(line).exitCode != 0) continue;
                    ++readings;
                    const double expected = chain == "A" ? -60.0 : -63.0;
                    EXPECT_NEAR(std::stod(Output("-get_power_per_chain " + chain)), expected, tolerance);
                    const auto spectrum = SampleFiles::NumbersOf(Output("-update_spectrum"));
                    ASSERT_FALSE(spectrum.empty());
                    EXPECT_NEAR(*std::ranges::max_element(spectrum), expected, tolerance);
                }
        EXPECT_GE(readings, 12) << adapter;
    }
}

}  // namespace
