// How a host chooses the adapter that CommandFactory gives, the air it hears, and what is recorded of its calls.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "QuayCommands.h"

namespace quayCommand {

/// Texts as a person types them.
struct RadioSetup {
    /// "KEY=VALUE,...", keys hw, card, device, antennas, sku, mac, bands, samples, seed, connected. Empty: the default
    /// adapter.
    std::string adapter;
    /// "sim", "sim:SCENE" (a scene file or the name of a shipped scene) or "file:PATH" (a sample file, or a folder of
    /// them). Empty: "sim".
    std::string air;
    /// File that gets a line for each call the flows make on the radio. Empty: none.
    std::string journalPath;
    /// "OPERATION:N[:KIND][,...]": the n-th call of that operation throws, N counting from 1 or "*" for each call; KIND
    /// is common (the default), quay or std. Empty: none.
    std::string faults;
};

/// Makes the adapter of `setup` the one that CommandFactory gives. Call it before the plug-in's Init: pointers taken
/// from the adapter before are dead afterwards.
/// @return the reason, with the key at fault, when the set-up is refused; the adapter before then stays
QUAY_COMMANDS_API std::optional<std::string> SetUpRadio(const RadioSetup& setup);

/// The adapter's description with every key written out, as `SetUpRadio` takes it.
QUAY_COMMANDS_API std::string DescribeAdapter();

/// What the air is, in a few words for a person.
QUAY_COMMANDS_API std::string DescribeAir();

/// The reason why the radio stopped being usable though no call failed, such as a journal that can't be written.
QUAY_COMMANDS_API std::optional<std::string> RadioTrouble();

/// Tells the air that a stress workload runs on the machine (or no longer does), so that a scene's workload noise
/// rises.
/// @return false when the air has no use for it, such as stored captures
QUAY_COMMANDS_API bool SetRadioWorkload(bool running);

/// Names of the shipped scenes, in alphabetical order.
QUAY_COMMANDS_API std::vector<std::string> ShippedSceneNames();

/// JSON text of a shipped scene; nothing for an unknown name.
QUAY_COMMANDS_API std::optional<std::string> ShippedSceneText(const std::string& name);

/// Names of all operations that the journal writes and a fault plan knows, interface by interface.
QUAY_COMMANDS_API std::vector<std::string> RadioOperationNames();

}  // namespace quayCommand
