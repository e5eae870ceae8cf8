// Writes the sample files that `SampleReader` reads.
#pragma once

#include <span>
#include <string>

#include "OSAL/Outcome.h"

namespace SampleFiles {

/// One line "I ,Q" for each sample. ADC codes are whole numbers of 16 bits; others are rounded.
/// @param q  as long as `i`
std::string SampleText(std::span<const double> i, std::span<const double> q);

/// Writes the file whole or not at all. A refusal names the file and the system's reason.
OSAL::Outcome<> WriteSampleFile(const std::string& path, std::span<const double> i, std::span<const double> q);

}  // namespace SampleFiles
