// One failure of the radio costs one line: whatever call fails, the next line with all settings measures right.
#include "FlowsTest.h"

namespace {

/// As far from the defaults as the smallest adapter goes.
constexpr const char* FarLine = "-band 5.2 -bandwidth 40 -channel 38 -chain B -trigger_now";
/// All settings, those of the defaults: what a half-done reset has written already is the most easily skipped.
constexpr const char* FullLine =
    "-band 2.4 -bandwidth 20 -channel 1 -chain A -internal_gain 0 -preLNA_resistor false -trigger_now";

class FaultPlanTest : public FlowsTest {
protected:
    FaultPlanTest() {
        // Chain B hears the tone 20 dB weaker, and the other channel another one: a wrong tuning shows.
        Write("tones.json", R"({"chain_offsets_db": [0, -20], "tones": [
            {"frequency_mhz": 2414.5, "level_dbm": -60}, {"frequency_mhz": 5192.5, "level_dbm": -50}]})");
    }

    /// One session under a fault plan: Init, the far line, `line`, and the full line, whose reading is checked; twice.
    /// @return how many lines failed
    int FailedLines(const std::string& adapter, const std::string& faults, const std::string& line) {
        m_flows.reset();
        const auto refusal = quayCommand::SetUpRadio({adapter, "sim:" + Path("tones.json"), Path("journal"), faults});
        EXPECT_EQ(refusal.value_or(""), "");
        m_flows = std::make_unique<TarnWifiFlows>(&m_host);
        int failed = 0;
        try {
            m_flows->Init();
        } catch (...) {
            ++failed;
            m_flows->Init();
        }
        for (int round = 0; round < 2; ++round) {
            failed += Run(FarLine).exitCode != 0;
            failed += Run(line).exitCode != 0;
            if (Run(FullLine).exitCode != 0) {
                ++failed;
                const Answer again = Run(FullLine);
                EXPECT_EQ(again.exitCode, 0) << again.error;
            }
            EXPECT_NEAR(Engine().GetChannelPowerPerChain(0), -60.0, 1.0);
            EXPECT_EQ(Engine().m_CenterFreq, 2412.0);
        }
        return failed;
    }
};

TEST_F(FaultPlanTest, AfterAnySingleFailureTheNextFullLineMeasuresRight) {
    for (const std::string adapter : {"hw=9,samples=4096", "hw=16,samples=4096", "hw=26,samples=4096"}) {
        for (const std::string line : {"-reset_config", "-mcc_profile US -set_mcc", "-chain A -trigger_now"}) {
            EXPECT_EQ(FailedLines(adapter, "", line), 0) << adapter;
            std::set<std::string> called;
            for (const std::string& call : Lines(Read("journal")))
                called.insert(call.substr(0, call.find(' ')));
            for (const std::string& operation : called) {
                for (int call = 1; call <= 5; ++call) {
                    const std::string fault = operation + ":" + std::to_string(call) + (call % 2 ? "" : ":std");
                    SCOPED_TRACE(adapter + " " + line + " " + fault);
                    EXPECT_LE(FailedLines(adapter, fault, line), 1);
                }
            }
        }
    }
}

}  // namespace
