// What an operation throws, by value or as a pointer. For test programs that link CommonApp.
#pragma once

#include <string>

#include "Caught.h"
#include "Exceptions.h"

namespace Support {

/// The text of what `operation` throws.
template <typename Operation>
std::string ThrownText(Operation&& operation) {
    std::string text = "nothing thrown";
    Common::RunCaught(operation, [&](const Common::Caught& caught) { text = caught.TextOr("no std::exception"); });
    return text;
}

/// The same with the place behind it that the failure names: "message in function".
template <typename Operation>
std::string LocatedText(Operation&& operation) {
    std::string text = "nothing thrown";
    Common::RunCaught(operation, [&](const Common::Caught& caught) {
        const auto* failure = caught.As<Utilities::Exception>();
        const auto* location = failure ? failure->GetLocation() : nullptr;
        text = caught.TextOr("no std::exception") + " in " + (location ? location->GetFunction() : "no place");
    });
    return text;
}

}  // namespace Support
