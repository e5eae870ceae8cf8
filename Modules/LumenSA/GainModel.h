// The analogue gain of each chip family. Plain functions, so that a simulated receiver can use the same figures.
#pragma once

#include <cstdint>
#include <string_view>

#include "HardwareTypes.h"

namespace LumenSpectrumAnalyzer {

using RadioFacts::ChipFamily;

/// Which of a family's channel ranges a channel lies in; the rows of the correction table speak of these.
/// Pine and Rowan: `Marked` is 3, 4, 5 and 13 of band 0, `Low` is up to 140 (band 1) or 69 (band 2), `High` above.
/// The other families: band 1 has `Low` 36 to 64 and `High` 100 to 165, band 2 `Low` from 1 to below 100 and `High` 100
/// to 233. `Others` is every channel that no range takes; a row for `All` takes any channel.
enum class ChannelClass { All, Low, High, Marked, Others };

ChannelClass ClassOfChannel(ChipFamily family, std::uint32_t band, double channel);

/// Gain in dB between antenna and ADC.
/// @param preLna        pre-LNA setting
/// @param internalGain  internal gain index
/// @param band          0 is 2.4 GHz, 1 is 5 GHz, 2 is 6 GHz
/// @param chain         "A" or "B"; any other text gets the family's bare offset
/// @param channel       channel number
/// @param boardSku      0, 1 or 2; only the Ash, Bay and Rowan families look at it
double ManualGain(ChipFamily family, std::uint32_t preLna, std::uint32_t internalGain, std::uint32_t band,
                  std::string_view chain, double channel, std::uint32_t boardSku);

}  // namespace LumenSpectrumAnalyzer
