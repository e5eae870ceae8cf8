// Sample files as an analysis reads them: one sample a line, "I ,Q" in whole ADC codes.
#pragma once

#include <string>

#include "Captures/RadioCapture.h"

namespace TarnHost {

/// The text of a sample file. ADC codes are whole numbers of 16 bits.
std::string SampleText(const Samples& samples);

}  // namespace TarnHost
