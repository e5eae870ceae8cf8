// The Wi-Fi channels that a receiver tunes to: numbers, widths and centre frequencies.
#pragma once

#include <cstdint>

namespace quayCommand {

/// Width in MHz of a bandwidth number (0 to 4); 0 for any other number.
std::uint32_t WidthMhz(std::uint32_t bandwidth);

/// True when the band (0 to 2) has this channel at this bandwidth number.
bool IsChannel(std::uint32_t band, std::uint32_t bandwidth, std::uint32_t channel);

/// Centre frequency in MHz of a channel number, whether the band has this channel or not; 0 for a band above 2.
double ChannelCentreMhz(std::uint32_t band, std::uint32_t channel);

}  // namespace quayCommand
