// Results as text answers: numbers as a default output stream writes them, a blank between two, a line end between two
// lines and none behind the last.
#pragma once

#include <string>

#include "Readouts.h"

namespace PlainText {

/// A line each for bins, samples, buckets and padded sweep length.
std::string Sweep(const SweepReadout& sweep);
/// A line a chain.
std::string Bins(const ChainBuffers& bins);
/// A line of I and a line of Q a chain.
std::string IQ(const IQReadout& codes);
/// Counts of I and Q together, of I, of Q, then minimum and maximum: four lines a chain.
std::string Histogram(const HistogramReadout& counts);
/// A line a chain: frequency and power of each peak.
std::string Peaks(const PeaksReadout& peaks);
std::string Number(double value);

}  // namespace PlainText
