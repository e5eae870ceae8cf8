// What sets one adapter apart from another: one row a hardware type, one row a card type. A new chip generation is a
// row here, its gain coefficients in the engine's gain model, and its capture class. Thread: constant data and pure
// functions, safe from everywhere.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "ChannelPlan.h"

namespace RadioFacts {

/// Chip families, named by their chips; each has an engine variant. `Plain` has the base formula of the gain and no
/// correction table.
enum class ChipFamily { Plain, ElmOak, FirYew, Ash2, Bay, Ash4, Pine, Rowan };
/// How the chip captures, named by the capture classes.
enum class CaptureClass { Sorrel, Tansy, Yarrow, Clover };
/// Record that makes the chip ready before a capture's set-up.
enum class Preparation { None, A, B };
/// Form of the manual gain record.
enum class GainLayout { A, B, C };
/// Sample rate by channel width. `Unknown`: none is told; `Fixed80`: 80 MHz for channels that fit in; `ByWidth`: the
/// channel's width, and 40 MHz at least.
enum class SampleRates { Unknown, Fixed80, ByWidth };
/// Description of the non-volatile memory that the radio needs; `None` stands last, so that the others count from 0.
enum class NvmDocument { Teak, Fir, Yew, Ash, Bay, Ash4, None };
/// Antenna of a card with one receive chain: as it was set, or the only one that the chip has.
enum class Antenna { AsSet, OnlyA, OnlyB };
/// Whether the radio can be asked for the size of the board, and whether the engine needs the answer when it is made.
enum class BoardQuery { Never, Allowed, AtStart };

struct HardwareType {
    std::uint32_t number;
    ChipFamily family;
    CaptureClass capture;
    Preparation preparation;
    GainLayout gainLayout;
    SampleRates rates;
    NvmDocument nvm;
    const char* startCountry;                        ///< profile to start with; null: the device's own
    std::array<std::uint32_t, BandCount> widestMhz;  ///< widest channel of each band; 0: the band is absent
    Antenna antenna;
    BoardQuery boardQuery;
    bool hasTripleGainSteps;  ///< one step of internal gain counts as three at 5.2 GHz
};

// clang-format off
namespace HardwareRows {
using enum ChipFamily;
using enum CaptureClass;
using P = Preparation;
using G = GainLayout;
using S = SampleRates;
using N = NvmDocument;
using A = Antenna;
using B = BoardQuery;
constexpr const char* Own = nullptr;

inline constexpr auto Known = std::to_array<HardwareType>({
    { 5, ElmOak, Sorrel, P::None, G::A, S::Unknown, N::None, Own,  {40, 40,  0},   A::OnlyB, B::Never,   false},
    { 6, ElmOak, Sorrel, P::None, G::A, S::Fixed80, N::None, Own,  {40, 80,  0},   A::AsSet, B::Never,   false},
    { 7, ElmOak, Sorrel, P::None, G::A, S::Fixed80, N::None, Own,  {40, 80,  0},   A::AsSet, B::Never,   false},
    { 8, ElmOak, Sorrel, P::None, G::A, S::Unknown, N::None, Own,  {40, 40,  0},   A::AsSet, B::Never,   false},
    { 9, Plain,  Tansy,  P::None, G::A, S::Fixed80, N::None, Own,  {40, 80,  0},   A::AsSet, B::Never,   false},
    {11, Plain,  Yarrow, P::None, G::A, S::ByWidth, N::Teak, Own,  {40, 160, 0},   A::OnlyA, B::Never,   true},
    {12, Plain,  Yarrow, P::None, G::A, S::ByWidth, N::Teak, Own,  {40, 40,  0},   A::AsSet, B::Never,   false},
    {13, Plain,  Yarrow, P::None, G::A, S::ByWidth, N::Teak, Own,  {40, 160, 0},   A::OnlyA, B::Never,   true},
    {14, Plain,  Yarrow, P::None, G::A, S::ByWidth, N::Teak, Own,  {40, 80,  0},   A::OnlyA, B::Never,   false},
    {15, Plain,  Yarrow, P::None, G::A, S::ByWidth, N::Teak, Own,  {40, 80,  0},   A::OnlyA, B::Never,   false},
    {16, FirYew, Yarrow, P::None, G::A, S::ByWidth, N::Fir,  Own,  {40, 160, 0},   A::OnlyA, B::Never,   true},
    {17, FirYew, Yarrow, P::None, G::A, S::ByWidth, N::Fir,  Own,  {40, 80,  0},   A::OnlyA, B::Never,   true},
    {20, FirYew, Yarrow, P::None, G::A, S::ByWidth, N::Yew,  Own,  {40, 160, 0},   A::OnlyA, B::Never,   true},
    {21, Ash2,   Yarrow, P::A,    G::A, S::ByWidth, N::Ash,  "US", {40, 160, 160}, A::AsSet, B::AtStart, false},
    {22, Bay,    Yarrow, P::None, G::A, S::ByWidth, N::Bay,  "US", {40, 160, 160}, A::AsSet, B::AtStart, false},
    {23, Ash4,   Yarrow, P::A,    G::A, S::ByWidth, N::Ash4, "US", {40, 160, 160}, A::AsSet, B::AtStart, false},
    {24, FirYew, Yarrow, P::None, G::A, S::ByWidth, N::Fir,  Own,  {40, 80,  0},   A::OnlyA, B::Never,   true},
    {25, Ash2,   Yarrow, P::None, G::B, S::ByWidth, N::Ash,  Own,  {40, 40,  0},   A::AsSet, B::AtStart, false},
    {26, Pine,   Clover, P::B,    G::C, S::ByWidth, N::None, "US", {40, 160, 320}, A::AsSet, B::Allowed, false},
    {27, Pine,   Clover, P::B,    G::C, S::ByWidth, N::None, "US", {40, 160, 320}, A::AsSet, B::Allowed, false},
    {28, Ash2,   Yarrow, P::None, G::B, S::ByWidth, N::Ash,  Own,  {40, 40,  0},   A::AsSet, B::AtStart, false},
    {29, Rowan,  Clover, P::B,    G::C, S::ByWidth, N::None, "US", {40, 160, 320}, A::AsSet, B::AtStart, false},
    {30, Plain,  Clover, P::B,    G::C, S::ByWidth, N::None, "US", {40, 160, 160}, A::AsSet, B::Never,   false},
});

/// Stand-ins for numbers without a row, below and from the first number that captures as Yarrow does.
inline constexpr HardwareType UnknownOlder
    { 0, Plain,  Sorrel, P::None, G::A, S::Unknown, N::None, Own,  {40, 40,  0},   A::AsSet, B::Never,   false};
inline constexpr HardwareType UnknownNewer
    {11, Plain,  Yarrow, P::None, G::A, S::Unknown, N::None, Own,  {40, 40,  0},   A::AsSet, B::Never,   false};
}  // namespace HardwareRows
// clang-format on

/// The row of a hardware type; null for an unknown one.
const HardwareType* FindHardware(std::uint32_t number);

/// The row of a hardware type, or what stands in for an unknown one.
const HardwareType& HardwareOf(std::uint32_t number);

/// ADC sample rate in MHz at a bandwidth number; 0 when none is told.
constexpr double SampleRateMhz(SampleRates rates, std::uint32_t bandwidth) {
    const std::uint32_t width = WidthMhz(bandwidth);
    if (rates == SampleRates::Fixed80) return width != 0 && width <= 80 ? 80.0 : 0.0;
    if (rates == SampleRates::ByWidth && width != 0) return std::max(width, 40U);
    return 0.0;
}

/// Which front-end a board has by its size, as the gain tables count it, from the radio's answer: 0, 1, or 2 for
/// another.
constexpr std::uint32_t BoardNumber(std::uint32_t answer) {
    const std::uint32_t code = answer & 0xFF;
    return code == 1 ? 0 : code == 2 ? 1 : 2;
}

/// The card that carries the chip.
struct CardType {
    std::uint32_t number;
    std::uint32_t twoChainMask;  ///< receive antennas of a card with two chains, bit 0 is A; 0: a card with one chain
    std::uint32_t widest52Mhz;   ///< widest channel at 5.2 GHz; 0: the band is absent
};
/// 64 is the number before the radio was asked.
inline constexpr auto CardTypes = std::to_array<CardType>({
    {0, 0, 160},
    {1, 1, 160},
    {2, 1, 0},
    {4, 3, 160},
    {8, 3, 160},
    {32, 3, 0},
    {64, 0, 80},
});

/// The row of a card type, or the one of an unknown card: one chain, no 5.2 GHz.
CardType CardOf(std::uint32_t number);

/// Whether chip and card can tune to a band at a width at all, whatever the country allows.
bool CanTune(std::uint32_t hardware, std::uint32_t card, const ChannelSet& channels);

}  // namespace RadioFacts
