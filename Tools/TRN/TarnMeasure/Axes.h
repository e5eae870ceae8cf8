// A plot's two axes: MHz to the right, dBm upwards.
#pragma once

#include <string>
#include <vector>

#include "Canvas.h"

namespace TarnMeasure {

namespace Ink {
constexpr Colour Text{0.13, 0.15, 0.19};
constexpr Colour Faint{0.45, 0.48, 0.53};
constexpr Colour Grid{0.88, 0.89, 0.91};
constexpr Colour Band{0.20, 0.45, 0.80, 0.07};
constexpr Colour Edge{0.20, 0.45, 0.80, 0.55};
constexpr Colour Spectrum{0.62, 0.65, 0.70};
constexpr Colour MaxHold{0.80, 0.22, 0.18};
constexpr Colour Average{0.06, 0.38, 0.72};
constexpr Colour Power{0.10, 0.52, 0.30};
constexpr Colour Limit{0.75, 0.10, 0.45};
}  // namespace Ink

struct Range {
    double low, high;
    double Span() const { return high - low; }
};

/// Multiples of 1, 2 or 5 times a power of ten inside the range, `most` at the most.
std::vector<double> Ticks(const Range& range, int most);

/// Maps values into a box and draws grid, ticks and titles around it.
class Axes {
public:
    Axes(const Box& box, const Range& mhz, const Range& dbm) : m_box(box), m_mhz(mhz), m_dbm(dbm) {}

    double X(double mhz) const { return m_box.left + (mhz - m_mhz.low) / m_mhz.Span() * m_box.Width(); }
    double Y(double dbm) const;
    const Box& Inside() const { return m_box; }

    void DrawGrid(Canvas& canvas, const std::string& verticalTitle) const;
    void DrawFrame(Canvas& canvas, const std::string& horizontalTitle) const;

    /// A graph whose value k lies at `first_mhz` + k * `step_mhz`. Where a column of the picture holds many values, it
    /// shows their smallest and largest, so that no line is lost.
    void DrawGraph(Canvas& canvas, const std::vector<double>& values, double first_mhz, double step_mhz,
                   const Colour& colour, double width) const;

private:
    Box m_box;
    Range m_mhz;
    Range m_dbm;
};

}  // namespace TarnMeasure
