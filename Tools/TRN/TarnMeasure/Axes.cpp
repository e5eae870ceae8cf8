#include "Axes.h"

#include <algorithm>
#include <cmath>

#include "Report.h"

namespace TarnMeasure {

std::vector<double> Ticks(const Range& range, int most) {
    const double raw = range.Span() / most;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    double step = 10 * power;
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= raw * 0.999999) {
            step = factor * power;
            break;
        }
    std::vector<double> ticks;
    for (double k = std::ceil(range.low / step - 1e-9); k * step <= range.high + step * 1e-9; ++k)
        ticks.push_back(k * step);
    return ticks;
}

double Axes::Y(double dbm) const {
    if (std::isnan(dbm)) dbm = m_dbm.low;
    const double bounded = std::clamp(dbm, m_dbm.low - m_dbm.Span(), m_dbm.high + m_dbm.Span());
    return m_box.bottom - (bounded - m_dbm.low) / m_dbm.Span() * m_box.Height();
}

void Axes::DrawGrid(Canvas& canvas, const std::string& verticalTitle) const {
    for (const double dbm : Ticks(m_dbm, std::max(3, static_cast<int>(m_box.Height() / 34)))) {
        canvas.Line({{m_box.left, Y(dbm)}, {m_box.right, Y(dbm)}}, Ink::Grid, 0.7);
        canvas.Text({m_box.left - 6, Y(dbm) + 3}, FixedText(dbm, 0), 9, Ink::Faint, Align::Right);
    }
    const std::vector<double> marks = Ticks(m_mhz, std::max(3, static_cast<int>(m_box.Width() / 80)));
    const int decimals = marks.size() > 1 && marks[1] - marks[0] < 0.999 ? 2 : 0;
    for (const double mhz : marks) {
        canvas.Line({{X(mhz), m_box.top}, {X(mhz), m_box.bottom}}, Ink::Grid, 0.7);
        canvas.Text({X(mhz), m_box.bottom + 13}, FixedText(mhz, decimals), 9, Ink::Faint, Align::Centre);
    }
    canvas.Text({m_box.left - 38, (m_box.top + m_box.bottom) / 2}, verticalTitle, 9.5, Ink::Text, Align::Centre, false,
                true);
}

void Axes::DrawFrame(Canvas& canvas, const std::string& horizontalTitle) const {
    canvas.Line({{m_box.left, m_box.top},
                 {m_box.left, m_box.bottom},
                 {m_box.right, m_box.bottom},
                 {m_box.right, m_box.top},
                 {m_box.left, m_box.top}},
                Ink::Faint, 0.8);
    if (!horizontalTitle.empty())
        canvas.Text({(m_box.left + m_box.right) / 2, m_box.bottom + 28}, horizontalTitle, 9.5, Ink::Text,
                    Align::Centre);
}

void Axes::DrawGraph(Canvas& canvas, const std::vector<double>& values, double first_mhz, double step_mhz,
                     const Colour& colour, double width) const {
    std::vector<Point> line;
    constexpr double column = 0.5;
    for (std::size_t k = 0; k < values.size();) {
        const double x = X(first_mhz + static_cast<double>(k) * step_mhz);
        double low = values[k], high = values[k];
        const std::size_t first = k;
        for (; k < values.size() && X(first_mhz + static_cast<double>(k) * step_mhz) < x + column; ++k) {
            low = std::min(low, values[k]);
            high = std::max(high, values[k]);
        }
        if (k == first) ++k;
        line.push_back({x, Y(low)});
        if (high > low) line.push_back({x, Y(high)});
    }
    canvas.Clip(m_box);
    canvas.Line(line, colour, width);
    canvas.Unclip();
}

}  // namespace TarnMeasure
