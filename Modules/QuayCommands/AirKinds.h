// The kinds of air and how each is opened.
#pragma once

#include <memory>
#include <string>

#include "Air/Air.h"
#include "Air/AirContext.h"
#include "OSAL/Outcome.h"

namespace quayCommand {

/// The air of a person's text, "PREFIX" or "PREFIX:ARGUMENT"; empty text is the default air. A refusal begins with
/// "air: ".
OSAL::Outcome<std::unique_ptr<IAir>> OpenAir(const std::string& text, const AirContext& context);

}  // namespace quayCommand
