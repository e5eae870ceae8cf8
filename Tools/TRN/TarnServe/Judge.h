// The limit in force, and its verdict on the powers of one sweep.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ChannelTable.h"
#include "DataFolder.h"
#include "Limits.h"
#include "OSAL/Outcome.h"

namespace TarnServe {

/// @param text  a level in dBm, or a limit file of the data folder; empty: no limit
OSAL::Outcome<std::optional<TarnMeasure::Limits>> ReadLimits(const std::string& text, const DataFolder& folder);

/// Thread: one at a time.
class Judge {
public:
    /// @param text  a level in dBm over the channel, or a limit file of the data folder; empty: no limit
    OSAL::Outcome<> Use(const std::string& text, double margin_db, const DataFolder& folder);

    const std::string& Text() const { return m_text; }
    double Margin_db() const { return m_margin_db; }
    /// The limit is a line over frequency, so a graph is judged.
    bool NeedsGraph() const { return m_limits && m_limits->IsLine(); }
    /// Points of the line; empty for limits on channel powers.
    std::vector<TarnMeasure::Limits::Point> Line() const;

    /// @param graph    of the whole sweep, lowest frequency first, dBm in one RBW; may be empty unless NeedsGraph()
    /// @param invalid  why the sweep proves nothing; empty when it is sound
    ChainVerdict Say(const Tuning& tuning, const std::string& chain, std::optional<double> power_dbm,
                     const std::vector<double>& graph, const std::string& invalid) const;

private:
    std::string m_text;
    double m_margin_db = 3;
    std::optional<TarnMeasure::Limits> m_limits;
};

}  // namespace TarnServe
