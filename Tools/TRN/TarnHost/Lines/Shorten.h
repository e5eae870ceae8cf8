// Sentences that quote what a person or a file gave, however much that is.
#pragma once

#include <string>

namespace TarnHost {

/// The text; of one over 800 bytes as many words as fit, then "... and N more" for the words left out.
std::string Shortened(const std::string& text);

}  // namespace TarnHost
