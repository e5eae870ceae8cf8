// A folder of sample files as the analysis sees it: which entries it will take, and why it skips the others.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "OSAL/Outcome.h"

namespace TarnHost {

struct FolderEntry {
    std::string name;
    std::string skipReason;  ///< empty: the analysis takes it
};

/// What a file name lacks of the four parameters BAND_, CHANNEL_, BW_ and CHAIN_; empty when it has all. A value stands
/// between its key and the next "_".
std::string MissingParameter(std::string_view name);

/// The folder's entries in the order in which the analysis meets them, without `result.csv`.
OSAL::Outcome<std::vector<FolderEntry>> ListCaptures(const std::filesystem::path& folder);

/// Why the analysis couldn't write its results into the folder; empty when it can.
std::string WhyNotWritable(const std::filesystem::path& folder);

}  // namespace TarnHost
