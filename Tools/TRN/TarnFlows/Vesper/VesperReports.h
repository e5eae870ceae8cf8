// The two CSV files of a test and one channel's graph.
#pragma once

#include <string>

#include "Vesper/VesperStore.h"

namespace VesperReports {

/// A line for each channel with a result, band by band: its desense in dB and its spurs.
std::string Summary(VesperStore& store, const VesperSettings& settings);

/// What the lines of all bins share.
struct BinsContext {
    std::uint32_t bandwidth = 0;  ///< bandwidth number that the channels are looked up with
    std::string chain;            ///< chain text of the single-chain mode
    std::string time;             ///< local, "%d/%m/%Y %H:%M:%S"
};
/// A line for each in-band bin of each slot and channel, by the engine's present settings.
/// @throws Common::Exception for a channel that the bandwidth doesn't have
std::string AllBins(const VesperStore& store, const VesperSettings& settings, VesperStore::Engine& engine,
                    const BinsContext& context);

/// JSON: an object for each slot; without numbers where the channel wasn't measured.
std::string Graph(const VesperStore& store, const VesperSettings& settings, VesperStore::Engine& engine,
                  const VesperKey& key);

/// Writes the file whole. @throws Common::Exception "File ${1} is a link", or why it can't be written
void Write(const char* operation, const std::string& path, const std::string& text);

}  // namespace VesperReports
