// The test's configuration file: nine lines "key,value" in any order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "TestConfigKeys.h"

/// @throws Common::Exception "Invalid parameter name" for a text that is no key
VesperParam StringToVesperParam(std::string_view key);

/// The nine values by their place; a key that the file doesn't name leaves its value empty. Lines may end in a carriage
/// return; what stands behind the ninth isn't looked at. The channel lists come without their first and last character.
/// @throws Common::Exception "File ${1} is a link", "Failed to parse file" for fewer than nine lines or a line without
///         a value, "Invalid parameter name"
std::vector<std::string> ParseVesperConfigFile(const std::string& path);
