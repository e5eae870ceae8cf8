// One pass over a list of channels: tune, sweep a number of times, keep the mean power, go on.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "ChannelTable.h"

namespace TarnServe {

struct ScanOrder {
    int sweeps = 5;  ///< of each channel
    bool allBands = false;
};

/// Thread: one at a time.
class Scan {
public:
    /// @param back  settings that the scan leaves and that its end restores
    Scan(std::vector<ChannelName> channels, int sweeps, Settings back);

    bool IsOver() const { return m_at == m_channels.size(); }
    /// The line that tunes to the next channel; nothing while the present one needs sweeps.
    std::optional<std::string> TuningLine();
    /// A sweep of the present channel. @return its mean powers once it has all its sweeps
    std::optional<std::vector<ChainVerdict>> TakeSweep(const std::vector<ChainVerdict>& powers);
    /// The present channel can't be measured.
    void Skip();
    /// The line that restores the tuning from before the scan.
    std::string BackLine() const;

    std::size_t Done() const { return m_at; }
    std::size_t Total() const { return m_channels.size(); }
    std::string What() const;

private:
    std::vector<ChannelName> m_channels;
    int m_sweeps;
    Settings m_back;
    std::size_t m_at = 0;
    bool m_isTuned = false;
    int m_taken = 0;
    std::vector<double> m_sums;  ///< linear powers of the chains, in mW
};

}  // namespace TarnServe
