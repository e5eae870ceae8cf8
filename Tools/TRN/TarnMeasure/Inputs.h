// What a person may type for a setting, made into the keys' own text.
#pragma once

#include <string>

#include "OSAL/Outcome.h"

namespace TarnMeasure {

/// "2.4", "5.2" or "6-7"; also "5", "6", with or without "GHz".
OSAL::Outcome<std::string> ReadBand(const std::string& text);
/// "20", "40", "80", "160" or "320", with or without "MHz".
OSAL::Outcome<std::string> ReadBandwidth(const std::string& text);
/// "A", "B" or "AB", in either case and order, also "A+B" and "A,B".
OSAL::Outcome<std::string> ReadChain(const std::string& text);
/// Resolution bandwidth in kHz: 39.0625, 78.125, 156.25 or 312.5, or what is near enough to be one of them ("39"),
/// with or without "kHz".
OSAL::Outcome<double> ReadRbw(const std::string& text);

}  // namespace TarnMeasure
