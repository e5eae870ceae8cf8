// Descriptions of the adapter's non-volatile memory, one XML text a chip family, handed to the radio as they are.
#pragma once

#include <cstdint>
#include <string>

/// The document of a hardware type, in one line; null for a type that needs none. Lives as long as the program.
/// @throws std::runtime_error "Unknown device"
const std::string* NvmDocumentOfHardware(std::uint32_t hwType);
