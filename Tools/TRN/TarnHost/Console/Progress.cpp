#include "Console/Progress.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "PlainText.h"

namespace TarnHost {
namespace {

using Seconds = std::chrono::duration<double>;
constexpr auto refreshPeriod = std::chrono::milliseconds(100);

std::string RestText(double seconds) {
    const auto whole = static_cast<long>(std::ceil(seconds));
    if (whole < 120) return std::to_string(whole) + " s left";
    return std::to_string((whole + 59) / 60) + " min left";
}

}  // namespace

std::string ProgressText(std::size_t done, std::size_t total, Seconds elapsed, const std::string& unit) {
    std::string text = std::to_string(done) + " of " + std::to_string(total) + " " + unit;
    if (done == 0 || elapsed.count() <= 0) return text;
    const double rate = static_cast<double>(done) / elapsed.count();
    std::array<char, 64> rateText{};
    std::snprintf(rateText.data(), rateText.size(), ", %.1f ", rate);
    return text + rateText.data() + unit + "/s, " + RestText(static_cast<double>(total - std::min(done, total)) / rate);
}

void StatusLine::Show(const std::string& text) {
    if (!m_isOn) return;
    const auto now = std::chrono::steady_clock::now();
    if (m_isShown && now - m_last < refreshPeriod) return;
    m_last = now;
    const std::size_t columns = m_terminal.Columns();
    // back to the line's start, the text, clear the rest of the line
    m_terminal.Steer("\r" + TarnMeasure::Printable(columns > 0 ? text.substr(0, columns - 1) : text) + "\x1b[K");
    m_terminal.Flush();
    m_isShown = true;
}

void StatusLine::Clear() {
    if (!m_isShown) return;
    m_terminal.Steer("\r\x1b[K");
    m_terminal.Flush();
    m_isShown = false;
}

}  // namespace TarnHost
