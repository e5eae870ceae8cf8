// The start of the vocabulary and of the value layer under it.
#pragma once

namespace BackEnd {

/// Starts the value layer, then registers every enumeration of the radio; the second call and later ones do nothing.
/// Always true, so that it can start a static object.
bool Start();

}  // namespace BackEnd
