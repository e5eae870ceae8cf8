// Lines that stand out of a graph.
#pragma once

#include <cstddef>
#include <vector>

namespace TarnMeasure {

/// Bins of the peaks, the strongest first. A peak is a bin above all bins around it until the graph has fallen by
/// `excursion_db` on either side (or ended there), and above the median of its surroundings by as much. A flat top
/// counts once. Noise and broad signals give no peak.
/// @param graph         dBm in one RBW; minus infinity for an empty bin
/// @param excursion_db  above 0
std::vector<std::size_t> PeakBins(const std::vector<double>& graph, double excursion_db);

}  // namespace TarnMeasure
