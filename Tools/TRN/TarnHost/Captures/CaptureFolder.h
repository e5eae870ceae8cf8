// A folder of sample files as the analysis sees it: which entries it will take, and why it skips the others.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "OSAL/Outcome.h"

namespace TarnHost {

/// What a folder holds for the analysis. Hidden files and what a killed writer left behind are no captures and not
/// told of.
struct CaptureFolder {
    std::vector<std::string> files;    ///< that the analysis takes, in the order in which the system lists them
    std::vector<std::string> skipped;  ///< "'name': why" of the first 20 others
    std::size_t skippedCount = 0;
};

/// What a file name lacks of the parameters that tell the tuning; empty when it has all.
std::string MissingParameter(std::string_view name);

/// Looks through the folder; `result.csv` doesn't count. Refused when it can't be read, or when `isWanted` says that
/// nobody waits any more.
OSAL::Outcome<CaptureFolder> ListCaptures(const std::filesystem::path& folder, const std::function<bool()>& isWanted);

/// Looks at `result.csv` before the work: refused when it couldn't be put there, or, without `overwrite`, when
/// something else than results of an analysis stands there.
struct ResultPlace {
    bool overwrite = false;
};
OSAL::Outcome<> CheckResultPlace(const std::filesystem::path& folder, ResultPlace place);

}  // namespace TarnHost
