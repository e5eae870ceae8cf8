// Sample files as an analysis reads them: one sample a line, "I ,Q" in whole ADC codes.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "Captures/RadioCapture.h"
#include "Outcome.h"

namespace TarnHost {

/// The text of a sample file. ADC codes are whole numbers of 16 bits.
std::string SampleText(const Samples& samples);

/// Writes the file whole or not at all.
std::optional<Failure> WriteWhole(const std::filesystem::path& path, const std::string& text);

}  // namespace TarnHost
