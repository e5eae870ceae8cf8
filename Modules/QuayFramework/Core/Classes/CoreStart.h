// The start of the value layer.
#pragma once

#include <string>

namespace Core {

/// Registers the built-in value types, the "$(name)" references of message templates and the service domain, once; the
/// second call and later ones do nothing. Always true, so that it can start a static object.
bool Start();

/// Replaces each "$(name)" by the text of the value of that name, from the last reference to the first. Names of no
/// value stay as they are.
void ExpandValueReferences(std::string& text);

}  // namespace Core
