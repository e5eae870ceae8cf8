// Stored ADC captures: one sample a line in a text file, its tuning in the file's name.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace AdcFile {

/// Text between the first `key` in a file name and the next "_" behind it; empty when either is missing.
std::string ParseParamFromFilename(const std::string& name, const std::string& key);
/// Values of "BAND_", "CHANNEL_", "BW_" and "CHAIN_"; false at the first one that is empty.
bool GetParamsFromFilename(const std::string& name, std::string& band, std::string& channel, std::string& bandwidth,
                           std::string& chain);

/// One sample line: I up to the first blank, blanks, one character that is dropped, Q up to the next blank or the end.
/// With nothing behind the first field, Q equals I. Both by the rules of `FlowText::TextToDouble`, whose exceptions
/// pass.
void SetIQFromLine(double* i, double* q, const std::string& line);

/// Reads up to `n` lines, sample k from line k, into two vectors of `n` doubles. What lies beyond the file's last line
/// stays as it was.
/// Memory: a fixed buffer, and a line of at most `SampleFiles::MaxLineBytes`.
/// @return lines read; nothing when the path is no regular file (a folder, a pipe, a device) or can't be opened
/// @throws std::invalid_argument, std::out_of_range of a line that is no sample; std::length_error of one without an
/// end
std::optional<std::size_t> ReadAdcFile(const std::string& path, double* i, double* q, std::size_t n);

}  // namespace AdcFile
