// A step that may fail in the flows' own way without ending the operation.
#pragma once

#include <optional>
#include <string>

#include "Caught.h"
#include "Exceptions.h"

/// The text of a `Common::Exception` that `action` ended in; other exceptions pass.
template <typename Action>
std::optional<std::string> DroppedFailure(const Action& action) {
    try {
        action();
    } catch (const Common::Exception*) {
        return Common::Caught().Text();
    } catch (const Common::Exception& failure) {
        return failure.what();
    }
    return std::nullopt;
}
