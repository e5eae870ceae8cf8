#pragma once

#include <string>

#include "Exceptions.h"

/// "message in function" of the failure that an operation throws.
template <typename Operation>
std::string FailureOf(Operation operation) {
    try {
        operation();
    } catch (const Utilities::Exception& caught) {
        return caught.what() + std::string(" in ") + caught.GetLocation()->GetFunction();
    }
    return "nothing thrown";
}
