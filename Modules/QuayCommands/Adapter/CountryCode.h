// Two-letter country codes, as the adapter's regulatory profile is chosen by.
#pragma once

#include <cstdint>

namespace quayCommand {

/// First letter in the high byte, second in the low byte.
constexpr std::uint16_t CountryCode(char first, char second) {
    return static_cast<std::uint16_t>((static_cast<unsigned char>(first) << 8) | static_cast<unsigned char>(second));
}

/// True for the officially assigned two-letter codes of ISO 3166-1, in either case of the letters.
bool IsKnownCountry(std::uint16_t code);

}  // namespace quayCommand
