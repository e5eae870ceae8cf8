// What a person may type for the air.
#pragma once

#include <string>

#include "OSAL/Outcome.h"

namespace TarnHost {

/// The air as the radio takes it. The name of a shipped scene, a scene's file and captures may stand without their
/// "sim:" and "file:". Refused only where a name comes near to that of a scene: the radio knows the rest better.
OSAL::Outcome<std::string> ReadAir(const std::string& text);

}  // namespace TarnHost
