// Numbers as the text answers write them: six significant digits, general notation, as a default output stream.
#pragma once

#include <span>
#include <string>

#include "Support/ChainBuffers.h"

/// Appends one number; "inf", "nan" and "1e+06" as the stream writes them.
void AppendStreamText(std::string& out, double value);

/// The values with a single blank between two, none behind the last.
void AppendStreamLine(std::string& out, std::span<const double> values);

/// A line for each chain; a line end between two, none behind the last.
std::string StreamLines(const ChainBuffers& buffers);
