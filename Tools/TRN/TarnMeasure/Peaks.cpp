#include "Peaks.h"

#include <algorithm>
#include <iterator>

namespace TarnMeasure {
namespace {

constexpr std::ptrdiff_t surroundings = 40;  ///< bins on either side whose median is the local floor

double MedianAround(const std::vector<double>& graph, std::ptrdiff_t bin) {
    const auto bins = std::ssize(graph);
    std::vector<double> around(graph.begin() + std::max<std::ptrdiff_t>(0, bin - surroundings),
                               graph.begin() + std::min(bins, bin + surroundings + 1));
    const auto middle = around.begin() + std::ssize(around) / 2;
    std::nth_element(around.begin(), middle, around.end());
    return *middle;
}

/// Whether the graph falls by `excursion_db` from `bin` on before it rises above it; its end counts as a fall.
bool FallsFrom(const std::vector<double>& graph, std::ptrdiff_t bin, std::ptrdiff_t step, double excursion_db) {
    const double top = graph[static_cast<std::size_t>(bin)];
    for (std::ptrdiff_t k = bin + step; k >= 0 && k < std::ssize(graph); k += step) {
        const double level = graph[static_cast<std::size_t>(k)];
        if (level > top || (level == top && step < 0)) return false;  // of a flat top the first bin is the peak
        if (level <= top - excursion_db) return true;
    }
    return true;
}

}  // namespace

std::vector<std::size_t> PeakBins(const std::vector<double>& graph, double excursion_db) {
    std::vector<std::size_t> peaks;
    for (std::ptrdiff_t k = 0; k < std::ssize(graph); ++k) {
        const double level = graph[static_cast<std::size_t>(k)];
        // the cheap questions first: next to no bin of a noise floor comes through them
        if ((k > 0 && level <= graph[static_cast<std::size_t>(k - 1)]) ||
            (k + 1 < std::ssize(graph) && level < graph[static_cast<std::size_t>(k + 1)]))
            continue;
        if (FallsFrom(graph, k, -1, excursion_db) && FallsFrom(graph, k, 1, excursion_db) &&
            level >= MedianAround(graph, k) + excursion_db)
            peaks.push_back(static_cast<std::size_t>(k));
    }
    std::ranges::stable_sort(peaks, [&](std::size_t a, std::size_t b) { return graph[a] > graph[b]; });
    return peaks;
}

}  // namespace TarnMeasure
