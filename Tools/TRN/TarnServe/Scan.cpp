#include "Scan.h"

#include <algorithm>
#include <cmath>

namespace TarnServe {

Scan::Scan(std::vector<ChannelName> channels, int sweeps, Settings back)
    : m_channels(std::move(channels)), m_sweeps(std::max(1, sweeps)), m_back(std::move(back)) {}

std::optional<std::string> Scan::TuningLine() {
    if (IsOver() || m_isTuned) return std::nullopt;
    m_isTuned = true;
    m_taken = 0;
    m_sums.clear();
    const auto& [band, bandwidth, channel] = m_channels[m_at];
    return "-band " + band + " -bandwidth " + bandwidth + " -channel " + std::to_string(channel);
}

std::optional<std::vector<ChainVerdict>> Scan::TakeSweep(const std::vector<ChainVerdict>& powers) {
    m_sums.resize(powers.size());
    for (std::size_t k = 0; k < powers.size(); ++k)
        m_sums[k] += powers[k].power_dbm ? std::pow(10.0, *powers[k].power_dbm / 10.0) : std::nan("");
    if (++m_taken < m_sweeps) return std::nullopt;
    std::vector<ChainVerdict> mean = powers;
    for (std::size_t k = 0; k < mean.size(); ++k) {
        const double level = 10.0 * std::log10(m_sums[k] / m_taken);
        mean[k].power_dbm = std::isfinite(level) ? std::optional(level) : std::nullopt;
    }
    Skip();
    return mean;
}

void Scan::Skip() {
    if (!IsOver()) ++m_at;
    m_isTuned = false;
}

std::string Scan::BackLine() const {
    Settings tuning;
    for (const char* key : {"-band", "-bandwidth", "-channel"})
        if (const auto entry = m_back.find(key); entry != m_back.end()) tuning.insert(*entry);
    return SweepBook::LineOf(tuning);
}

std::string Scan::What() const {
    if (IsOver()) return "done";
    const auto& [band, bandwidth, channel] = m_channels[m_at];
    return band + " GHz, " + bandwidth + " MHz, channel " + std::to_string(channel);
}

}  // namespace TarnServe
