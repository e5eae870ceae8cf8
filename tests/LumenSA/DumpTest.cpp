// The text files byte for byte.
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "EngineHelp.h"
#include "Support/TempFolder.h"

namespace {

class Dump : public testing::Test {
protected:
    void SetUp() override {
        Tune(engine, 40, 312.5, 20, 2437);
        engine.m_NumChains = 2;
        engine.m_ChainName = "AB";
        engine.PrepareBuffers();
    }
    std::string Written() const { return folder.Read("dump.txt"); }

    CLmnSA engine;
    const Support::TempFolder folder;
    const std::string path = folder / "dump.txt";
};

TEST_F(Dump, SamplesStandOneALineWithEveryChainsIAndQ) {
    Codes codes(3);
    codes.i[0] = {12, -12, 1};
    codes.q[0] = {-7, 7, -1};
    codes.i[1] = {3, -32767, 32767};
    codes.q[1] = {0, 2, -2};
    codes.AddTo(engine, 2);
    engine.DumpIQ(path);
    EXPECT_EQ(Written(), "12,-7,2,0,\n-12,7,-32768,2,\n1,-1,32766,-2,\n");
}

TEST_F(Dump, EnergyIsOneLineWithTheChainsOfABinSideBySide) {
    const double values[] = {-87.3125, 1048576, 0, -INFINITY, NAN, 3.14159265, 1e-7};
    std::ostringstream expected;
    for (unsigned k = 0; k < engine.m_NumOfBins; ++k)
        for (int c = 0; c < 2; ++c) {
            const double value = k < std::size(values) ? values[k] + c : -0.001 * k;
            engine.m_Spectrum[c]->val[k] = value;
            engine.m_MaxHold[c][1]->val[k] = value;
            expected << value << ",";
        }
    engine.DumpSpectrum(path);
    EXPECT_EQ(Written(), expected.str());
    EXPECT_EQ(Written().substr(0, 31), "-87.3125,-86.3125,1.04858e+06,1");
    engine.m_ChannelIndex = 1;
    engine.DumpMaxHold(path);
    EXPECT_EQ(Written(), expected.str());
    engine.DumpEnergy(path, static_cast<LmnSAExportType>(2));
    EXPECT_EQ(Written(), "");
}

TEST_F(Dump, TheBinFileHasALineForEachInBandBinAndAnEmptyOneForZero) {
    engine.m_Spectrum[0]->val[32] = -80.5;
    engine.m_Spectrum[0]->val[34] = -81;
    engine.m_Spectrum[1]->val[95] = -1e-9;
    engine.DumpSpectrumByRBW(path);
    const std::string time = "[0-9]{2}/[0-9]{2}/[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}";
    const std::string head = "Channel,Chain,Power,RBW,BW,Sample Rate,Trigger Time\n", end = ", 312.5, 20, 40, " + time;
    EXPECT_TRUE(std::regex_match(Written(), std::regex(head + "2427, A, -80.5" + end + "\n\n2427.62, A, -81" + end +
                                                       "\n\n{124}2446.69, B, -1e-09" + end + "\n")));
    engine.m_Bandwidth = 320;
    engine.DumpSpectrumByRBW(path);
    EXPECT_EQ(Written(), head);
}

TEST_F(Dump, PeaksAreSplitByAnEmptyLineForEachChain) {
    engine.DumpPeaks(path);
    EXPECT_EQ(Written(), "Frequency,Power\n\n\n") << "before the first search";
    std::fill_n(engine.m_Spectrum[0]->val, 128, -100);
    engine.m_Spectrum[0]->val[48] = -40;
    engine.m_Spectrum[0]->val[80] = -30.25;
    engine.m_Spectrum[1]->val[64] = 7;
    engine.FindMaxPoints();
    engine.DumpPeaks(path);
    EXPECT_EQ(Written(), "Frequency,Power\n2442,-30.25\n2432,-40\n\n2437,7\n\n");
}

TEST_F(Dump, AFileThatCannotBeMadeIsNotReported) {
    EXPECT_NO_THROW(engine.DumpPeaks("/nowhere/at/all.txt"));
    EXPECT_NO_THROW(engine.DumpIQ("/nowhere/at/all.txt"));
}

}  // namespace
