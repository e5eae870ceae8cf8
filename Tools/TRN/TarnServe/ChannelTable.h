// The power of every channel visited, and the list of channels that a scan visits.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "SweepBook.h"

namespace TarnServe {

struct ChannelName {
    std::string band;
    std::string bandwidth;
    int channel = 0;
};

/// Verdict on one chain's channel power, as texts and numbers of the protocol.
struct ChainVerdict {
    std::string chain;
    std::optional<double> power_dbm;
    std::optional<double> limit_dbm;
    std::optional<double> margin_db;  ///< above 0: below the limit
    std::string verdict;              ///< PASS, MARGIN, FAIL, INVALID; empty without a limit
    std::string reason;
};

/// Thread: one at a time.
class ChannelTable {
public:
    /// The newest powers of the tuned channel.
    void Take(const Tuning& tuning, const std::vector<ChainVerdict>& verdicts, const std::string& utc);
    void Clear() { m_rows.clear(); }
    /// Array of rows in the order of band, width and channel.
    nlohmann::json ToJson() const;
    /// Rows of an earlier ToJson; rows of another form are left out.
    void FromJson(const nlohmann::json& rows);

private:
    struct Row {
        ChannelName name;
        double centre_mhz = 0;
        std::optional<double> powerA, powerB, limit_dbm;
        std::string verdict;
        std::string utc;
    };
    std::map<std::tuple<std::string, int, int>, Row> m_rows;
};

/// Channels of a "Supported Channels Data" body, of one band and width, or of all of them.
/// @param tuning  names band and width; with `allBands`, only the width, and bands without it are left out
std::vector<ChannelName> ChannelsOf(std::string_view supported, const Tuning& tuning, bool allBands);

}  // namespace TarnServe
