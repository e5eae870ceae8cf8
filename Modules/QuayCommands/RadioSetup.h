// How a host chooses the adapter that CommandFactory gives, the air it hears, and what is recorded of its calls; and
// one capture without the flows. Thread: that of the radio, one at a time.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "Adapter/AdapterDescription.h"
#include "Air/CaptureFacts.h"
#include "OSAL/Outcome.h"
#include "QuayCommands.h"

namespace quayCommand {

/// Which stored captures a receiver hears.
enum class StoredTuning {
    ByName,  ///< those whose file name tells the channel, width and chain that it is tuned to; other files are left out
    AsTuned  ///< all of them, whatever it is tuned to: it is for the person to tune to what was recorded
};

/// Whether a stress workload is taken to run on the machine, which a scene's noise may rise with.
enum class Workload {
    Auto,  ///< while a process of the workload's name runs, "bit" or "bit_cmd_line_x64"
    On,
    Off
};

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
    StoredTuning storedTuning = StoredTuning::ByName;
    Workload workload = Workload::Auto;
};

/// Makes the adapter of `setup` the one that CommandFactory gives. Call it before the plug-in's Init: pointers taken
/// from the adapter before are dead afterwards.
/// @return the reason, with the key at fault, when the set-up is refused; the adapter before then stays
QUAY_COMMANDS_API std::optional<std::string> SetUpRadio(const RadioSetup& setup);

/// The adapter's description with every key written out, as `SetUpRadio` takes it.
QUAY_COMMANDS_API std::string DescribeAdapter();

/// The same as data. Asks the description, not the adapter: no line in the journal, no step of the fault plan.
QUAY_COMMANDS_API AdapterDescription AdapterInUse();

/// What the air is, in a few words for a person.
QUAY_COMMANDS_API std::string DescribeAir();

/// The reason why the radio stopped being usable though no call failed, such as a journal that can't be written.
QUAY_COMMANDS_API std::optional<std::string> RadioTrouble();

/// Why the last capture gave no samples, where the radio knows more than that; a failing read has no words of its own.
QUAY_COMMANDS_API std::optional<std::string> CaptureTrouble();

/// A channel that a receiver tunes to.
struct RadioTuning {
    std::uint32_t band = 0;       ///< 0 is 2.4 GHz, 1 is 5.2 GHz, 2 is 6-7 GHz
    std::uint32_t bandwidth = 0;  ///< 0 is 20 MHz, 1 is 40, 2 is 80, 3 is 160, 4 is 320
    std::uint32_t channel = 0;
    bool operator==(const RadioTuning&) const = default;
};

/// Manual gain of one chain; both 0 is the highest gain, which an analysis of sample files assumes.
struct RecordGain {
    std::uint32_t internalGain = 0;
    std::uint32_t preLna = 0;
};

/// What one recording listens to.
struct RecordRequest {
    RadioTuning tuning;
    std::uint32_t chains = 1;                  ///< bit 0 chain A, bit 1 chain B
    std::array<RecordGain, MaxChains> gain{};  ///< A, B
};

/// ADC codes of one chain: whole numbers of 16 bits, `i` and `q` equally long; zeros behind the
/// delivered samples.
struct RecordedChain {
    unsigned chain = 0;  ///< 0 is A, 1 is B
    std::vector<double> i;
    std::vector<double> q;
};

/// One capture. What its samples are stands in `facts`, whose chains have the order of `chains`.
struct Recording {
    std::vector<RecordedChain> chains;
    CaptureFacts facts;
};

/// Sets the receiver up and takes one capture, by the operations that the flows use, so that journal and fault plan see
/// them. Leaves the receiver tuned to `request`.
/// @return why there is none: what the radio threw, or why it captured nothing
QUAY_COMMANDS_API OSAL::Outcome<Recording> RecordCapture(const RecordRequest& request);

/// Whether the adapter receives the channel: its band is enabled and it supports the channel at this bandwidth. Asks
/// the adapter as the flows do.
/// @return the answer, or what the radio threw
QUAY_COMMANDS_API OSAL::Outcome<bool> ReceivesChannel(const RadioTuning& tuning);

/// Says from now on that a stress workload runs on the machine, or that none does, whatever processes there are.
/// @return false when the air has no use for it: stored captures, or a scene that is the same with a workload
QUAY_COMMANDS_API bool SetRadioWorkload(bool running);

/// Names of the shipped scenes, in alphabetical order.
QUAY_COMMANDS_API std::vector<std::string> ShippedSceneNames();

/// JSON text of a shipped scene; nothing for an unknown name.
QUAY_COMMANDS_API std::optional<std::string> ShippedSceneText(const std::string& name);

/// Names of all operations that the journal writes and a fault plan knows, interface by interface.
QUAY_COMMANDS_API std::vector<std::string> RadioOperationNames();

}  // namespace quayCommand
