// A measurement as a picture: PNG, SVG or PDF by the file's ending.
#pragma once

#include <string>

#include "Measurement.h"

namespace TarnMeasure {

/// Draws one channel (spectrum, max hold, average, peak marks, a panel a chain) or a scan (all channels on one axis,
/// with a bar at each channel's power), with limits and how it came about.
OSAL::Outcome<> WritePicture(const Result& result, const std::string& path);

/// True for an ending that WritePicture knows.
bool IsPicturePath(const std::string& path);

}  // namespace TarnMeasure
