// The gain tables: one point in each range of each family, worked out from the calibration tables in decimal
// arithmetic.
#include <gtest/gtest.h>

#include "EngineHelp.h"
#include "LumenSAAsh2.h"
#include "LumenSAElmOak.h"

namespace {

using enum ChipFamily;

struct Point {
    ChipFamily family;
    const char* chain;
    unsigned band;
    double channel;
    unsigned sku;
    double gain;  ///< with pre-LNA 1 and internal gain 2
};

// clang-format off
constexpr Point Points[] = {
    {FirYew, "A", 0, 6, 0, 92.864600}, {FirYew, "A", 1, 132, 0, 99.551600}, {FirYew, "A", 1, 44, 0, 100.617100},
    {FirYew, "A", 1, 68, 0, 100.000000}, {FirYew, "B", 0, 6, 0, 92.883100}, {FirYew, "B", 1, 132, 0, 98.741200},
    {FirYew, "B", 1, 44, 0, 99.864200}, {FirYew, "B", 1, 68, 0, 100.000000}, {Ash2, "A", 0, 6, 0, 91.391982},
    {Ash2, "A", 0, 6, 1, 91.133046}, {Ash2, "A", 0, 6, 2, 93.707277}, {Ash2, "A", 1, 132, 0, 98.117597},
    {Ash2, "A", 1, 132, 1, 97.929914}, {Ash2, "A", 1, 132, 2, 99.612099}, {Ash2, "A", 1, 44, 0, 98.067443},
    {Ash2, "A", 1, 44, 1, 97.726537}, {Ash2, "A", 1, 44, 2, 98.855772}, {Ash2, "A", 1, 68, 1, 100.000000},
    {Ash2, "A", 2, 37, 0, 97.516285}, {Ash2, "A", 2, 37, 1, 97.246040}, {Ash2, "A", 2, 37, 2, 98.762565},
    {Ash2, "B", 0, 6, 0, 91.513677}, {Ash2, "B", 0, 6, 1, 91.606771}, {Ash2, "B", 0, 6, 2, 93.454235},
    {Ash2, "B", 1, 132, 0, 98.375247}, {Ash2, "B", 1, 132, 1, 97.952108}, {Ash2, "B", 1, 132, 2, 99.499315},
    {Ash2, "B", 1, 44, 0, 97.585387}, {Ash2, "B", 1, 44, 1, 97.578892}, {Ash2, "B", 1, 44, 2, 98.733735},
    {Ash2, "B", 1, 68, 1, 100.000000}, {Ash2, "B", 2, 37, 0, 96.828618}, {Ash2, "B", 2, 37, 1, 97.269026},
    {Ash2, "B", 2, 37, 2, 98.544530}, {Ash4, "A", 0, 6, 0, 91.308000}, {Ash4, "A", 0, 6, 1, 93.707277},
    {Ash4, "A", 1, 132, 1, 99.612099}, {Ash4, "A", 1, 44, 1, 98.855772}, {Ash4, "A", 1, 149, 0, 96.793800},
    {Ash4, "A", 1, 68, 1, 100.000000}, {Ash4, "A", 2, 37, 0, 96.322225}, {Ash4, "A", 2, 37, 1, 98.762565},
    {Ash4, "B", 0, 6, 0, 91.188000}, {Ash4, "B", 0, 6, 1, 93.454235}, {Ash4, "B", 1, 132, 1, 99.499315},
    {Ash4, "B", 1, 44, 1, 98.733735}, {Ash4, "B", 1, 149, 0, 96.411300}, {Ash4, "B", 1, 68, 1, 100.000000},
    {Ash4, "B", 2, 37, 0, 96.322225}, {Ash4, "B", 2, 37, 1, 98.544530}, {Bay, "A", 0, 6, 0, 91.552552},
    {Bay, "A", 0, 6, 1, 91.371432}, {Bay, "A", 0, 6, 2, 91.397113}, {Bay, "A", 1, 132, 0, 98.327858},
    {Bay, "A", 1, 132, 1, 96.905589}, {Bay, "A", 1, 132, 2, 97.607804}, {Bay, "A", 1, 44, 0, 98.604406},
    {Bay, "A", 1, 44, 1, 97.770729}, {Bay, "A", 1, 44, 2, 97.926009}, {Bay, "A", 1, 68, 1, 100.000000},
    {Bay, "A", 2, 37, 0, 97.656031}, {Bay, "A", 2, 37, 1, 96.119804}, {Bay, "A", 2, 37, 2, 97.087751},
    {Bay, "B", 0, 6, 0, 91.348562}, {Bay, "B", 0, 6, 1, 90.887684}, {Bay, "B", 0, 6, 2, 91.097556},
    {Bay, "B", 1, 132, 0, 98.252795}, {Bay, "B", 1, 132, 1, 97.024211}, {Bay, "B", 1, 132, 2, 98.102151},
    {Bay, "B", 1, 44, 0, 97.932474}, {Bay, "B", 1, 44, 1, 97.713286}, {Bay, "B", 1, 44, 2, 97.836579},
    {Bay, "B", 1, 68, 1, 100.000000}, {Bay, "B", 2, 93, 2, 96.038398}, {Bay, "B", 2, 201, 2, 94.970180},
    {Bay, "B", 2, 37, 0, 96.707135}, {Bay, "B", 2, 37, 1, 96.303035}, {Bay, "B", 2, 0, 2, 100.000000},
    {Pine, "A", 0, 13, 0, 98.548100}, {Pine, "A", 0, 9, 0, 104.403500}, {Pine, "A", 1, 157, 0, 116.035195},
    {Pine, "A", 1, 116, 0, 115.354508}, {Pine, "A", 2, 101, 0, 116.025158}, {Pine, "A", 2, 53, 0, 115.337695},
    {Pine, "B", 0, 13, 0, 99.788400}, {Pine, "B", 0, 9, 0, 105.524900}, {Pine, "B", 1, 157, 0, 115.744293},
    {Pine, "B", 1, 116, 0, 115.056670}, {Pine, "B", 2, 101, 0, 116.172658}, {Pine, "B", 2, 53, 0, 115.484083},
    {Rowan, "A", 0, 13, 0, 98.708700}, {Rowan, "A", 0, 13, 2, 98.708700}, {Rowan, "A", 0, 13, 1, 98.824600},
    {Rowan, "A", 0, 9, 0, 104.585200}, {Rowan, "A", 0, 9, 2, 104.585200}, {Rowan, "A", 0, 9, 1, 104.608800},
    {Rowan, "A", 1, 157, 0, 116.444546}, {Rowan, "A", 1, 157, 2, 116.444546}, {Rowan, "A", 1, 157, 1, 116.070643},
    {Rowan, "A", 1, 116, 0, 115.746740}, {Rowan, "A", 1, 116, 2, 115.746740}, {Rowan, "A", 1, 116, 1, 115.088539},
    {Rowan, "A", 2, 101, 0, 115.745479}, {Rowan, "A", 2, 101, 2, 115.745479}, {Rowan, "A", 2, 101, 1, 116.043490},
    {Rowan, "A", 2, 53, 0, 115.094144}, {Rowan, "A", 2, 53, 2, 115.094144}, {Rowan, "A", 2, 53, 1, 115.649580},
    {Rowan, "B", 0, 13, 0, 99.291100}, {Rowan, "B", 0, 13, 2, 99.291100}, {Rowan, "B", 0, 13, 1, 98.502400},
    {Rowan, "B", 0, 9, 0, 105.146900}, {Rowan, "B", 0, 9, 2, 105.146900}, {Rowan, "B", 0, 9, 1, 104.360600},
    {Rowan, "B", 1, 157, 0, 116.251033}, {Rowan, "B", 1, 157, 2, 116.251033}, {Rowan, "B", 1, 157, 1, 115.806130},
    {Rowan, "B", 1, 116, 0, 115.572031}, {Rowan, "B", 1, 116, 2, 115.572031}, {Rowan, "B", 1, 116, 1, 114.917781},
    {Rowan, "B", 2, 101, 0, 115.034973}, {Rowan, "B", 2, 101, 2, 115.034973}, {Rowan, "B", 2, 101, 1, 115.528171},
    {Rowan, "B", 2, 53, 0, 115.032925}, {Rowan, "B", 2, 53, 2, 115.032925}, {Rowan, "B", 2, 53, 1, 115.181004},
    // Borders of the ranges, and what no table row serves.
    {Ash2, "A", 1, 36, 0, 98.098375}, {Ash2, "A", 1, 99, 0, 100}, {Ash2, "A", 1, 166, 0, 100},
    {Pine, "A", 0, 4, 0, 98.2898}, {Pine, "A", 0, 6, 0, 104.2832}, {Pine, "B", 1, 140, 0, 114.747299},
    {Rowan, "A", 0, 6, 3, 106}, {FirYew, "A", 2, 37, 0, 67}, {Bay, "A", 3, 37, 0, 67}, {Rowan, "AB", 0, 6, 0, 79},
    {Plain, "", 0, 6, 0, 91}, {Plain, "A", 1, 36, 0, 100}, {Plain, "B", 3, 36, 0, 67}, {ElmOak, "A", 0, 6, 0, 91},
};
// clang-format on

TEST(Gain, EveryTableRowGivesItsHandWorkedGain) {
    for (const Point& p : Points)
        EXPECT_NEAR(ManualGain(p.family, 1, 2, p.band, p.chain, p.channel, p.sku), p.gain, 2e-6)
            << "family " << static_cast<int>(p.family) << " chain " << p.chain << " band " << p.band << " channel "
            << p.channel << " sku " << p.sku;
}

TEST(Gain, ASingleChainAlwaysLandsInTheFirstSlotAndAFileGainReplacesBoth) {
    CLmnAsh2 engine(1);
    engine.m_Channel = 132;
    engine.m_ChainName = "AB";
    engine.SetManualGain(1, 2, 1);
    EXPECT_NEAR(engine.m_Gain[0], 97.929914, 2e-6);
    EXPECT_NEAR(engine.m_Gain[1], 97.952108, 2e-6);
    engine.m_ChainName = "B";
    engine.SetManualGain(1, 2, 1);
    EXPECT_NEAR(engine.GetManualGain(0), 97.952108, 2e-6);
    EXPECT_EQ(engine.GetManualGain(1), 0.0);
    engine.m_Gain[2] = 5;
    engine.SetFileGain(42.5);
    EXPECT_EQ(engine.m_Gain, (std::array<double, 3>{42.5, 42.5, 5}));
    for (const unsigned chain : {3u, 4u})
        EXPECT_EQ(ThrownValue([&] { engine.GetManualGain(chain); }),
                  "Chain number " + std::to_string(chain) + " is invalid");
}

TEST(Gain, ElmOakKeepsItsOlderFormulaBesideTheOneInUse) {
    CLmnElmOak engine;
    EXPECT_EQ(engine.CalcManualGainFactor(1, 4, 0), 1 * 5 - 8 + 67);
    EXPECT_EQ(engine.CalcManualGainFactor(0, 3, 1), 2 * 8 + 67);
    EXPECT_EQ(engine.CalcManualGainFactor(0, 9, 0), 67);
    EXPECT_EQ(engine.CalcManualGainFactor(0, 0, 0, "A"), 109);
    EXPECT_EQ(engine.CalcManualGainFactor(0, 0, 1, "A"), 112);
}

}  // namespace
