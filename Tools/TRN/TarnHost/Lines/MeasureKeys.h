// The keys that a person adds to a measurement.
#pragma once

#include <string>

#include "OSAL/Outcome.h"

namespace TarnHost {

struct MeasureKeys {
    std::string setup;     ///< runs once before the first channel
    std::string gainFile;  ///< as one token: a table of gains to use; empty: none
};

/// Takes a line of keys apart. Refused with a key that would make the results' labels wrong, that doesn't reach what
/// the measurement reports, or that ends the use of the gain file beside it.
OSAL::Outcome<MeasureKeys> ReadMeasureKeys(const std::string& line);

}  // namespace TarnHost
