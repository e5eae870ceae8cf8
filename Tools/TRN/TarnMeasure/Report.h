// A measurement as text for a person, as CSV, and as JSON. Every number says what it is.
#pragma once

#include <string>

#include "Measurement.h"

namespace TarnMeasure {

/// Table of channels, the strongest first, with verdicts where limits are set, and the peaks of each. `columns` is the
/// terminal's width, 0 for none.
std::string TableText(const Result& result, std::size_t columns);

/// Comment lines behind "#" with what the numbers are and how they came about, then one line a bin of each channel and
/// chain: channel, chain, frequency in MHz, spectrum, max hold and average in dBm in one RBW; graphs that weren't asked
/// for are empty fields. Lines end in a line feed.
std::string CsvText(const Result& result);

/// One JSON object with settings, units, channels, chains, peaks and graphs. `indent` below 0 writes one line.
std::string JsonText(const Result& result, int indent);

/// False for a channel without levels to show: its receiver wasn't set up, or no sweep came.
bool IsMeasured(const ChannelResult& channel);

/// The settings in one line: "Band 5.2 GHz, channel 36, 20 MHz, chain AB, RBW 78.125 kHz, 50 sweeps"; "3 of 50 sweeps"
/// where a channel has fewer.
std::string SettingsText(const Result& result);

/// A sentence for each chain whose converter was overloaded, and for each channel that counts as not measured:
/// "channel 6 chain A: the converter was overloaded in 3 of 10 sweeps; ...".
std::vector<std::string> Warnings(const Result& result);

/// What the file says of how it came about, as lines "name: text" without line ends.
std::vector<std::string> ProvenanceLines(const Result& result);

/// Indices of the channels, the strongest channel power of any chain first.
std::vector<std::size_t> WorstFirst(const Result& result);

/// The strongest channel power of a channel's chains, in dBm over the channel.
double WorstPowerDbm(const ChannelResult& channel);

/// "39.0625" and the like: the shortest text that reads back as the value.
std::string ShortText(double value);
/// With a fixed number of decimals; "-inf" and "nan" for what has none.
std::string FixedText(double value, int decimals);

}  // namespace TarnMeasure
