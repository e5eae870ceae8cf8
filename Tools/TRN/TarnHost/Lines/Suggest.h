// "Did you mean": the name that a mistyped word comes near to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace TarnHost {

/// "; did you mean 'NAME'?" for the candidate with the fewest letters put in, left out, changed or swapped; empty when
/// none comes near. Case doesn't count. Words over 64 bytes come near to nothing.
std::string DidYouMean(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace TarnHost
