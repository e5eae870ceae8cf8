// Chip families, and what follows from a family without an engine: analogue gain and sample rate. Plain functions, so
// that a simulated receiver can use the same figures.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace LumenSpectrumAnalyzer {

/// The engine variants, named by the chips they serve. `Plain` is the base formula without a correction table.
enum class GainFamily { Plain, ElmOak, FirYew, Ash2, Bay, Ash4, Pine, Rowan };

/// The family of a hardware type; nothing for an unknown one.
std::optional<GainFamily> FamilyOfHardware(std::uint32_t hwType);

/// Gain in dB between antenna and ADC.
/// @param preLna        pre-LNA setting
/// @param internalGain  internal gain index
/// @param band          0 is 2.4 GHz, 1 is 5 GHz, 2 is 6 GHz
/// @param chain         "A" or "B"; any other text gets the family's bare offset
/// @param channel       channel number
/// @param boardSku      0, 1 or 2; only the Ash, Bay and Rowan families look at it
double ManualGain(GainFamily family, std::uint32_t preLna, std::uint32_t internalGain, std::uint32_t band,
                  std::string_view chain, double channel, std::uint32_t boardSku);

/// ADC sample rate in MHz of a hardware type at a bandwidth number (0 is 20 MHz ... 4 is 320 MHz); 0 when unknown.
double SampleRateMhz(std::uint32_t hwType, std::uint32_t bandwidth);

}  // namespace LumenSpectrumAnalyzer
