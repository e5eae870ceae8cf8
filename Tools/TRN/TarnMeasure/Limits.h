// Limits that measured levels must stay below, and the verdict on a reading.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "OSAL/Outcome.h"

namespace TarnMeasure {

enum class Verdict {
    Pass,     ///< at or below the limit less the margin
    Margin,   ///< inside the margin, and not above the limit
    Fail,     ///< above the limit
    Invalid,  ///< the reading proves nothing: overloaded, incomplete, not set up
};

/// "PASS", "MARGIN", "FAIL" or "INVALID".
const char* VerdictText(Verdict verdict);
/// The graver of two: INVALID before FAIL before MARGIN before PASS.
Verdict Graver(Verdict a, Verdict b);

/// What is judged: one chain of one channel.
struct Reading {
    std::string band;           ///< text of the key: "2.4", "5.2" or "5", "6-7"
    int channel = 0;            ///< number in the band
    double bandwidth_mhz = 0;   ///< of the channel
    double power_dbm = 0;       ///< over the channel
    std::vector<double> graph;  ///< bins of the channel, lowest frequency first, dBm in one RBW; may be empty
    double first_mhz = 0;       ///< centre of the graph's first bin
    double step_mhz = 0;        ///< from bin to bin
    std::string invalid;        ///< why the reading proves nothing; empty when it is sound
};

struct Judgement {
    Verdict verdict = Verdict::Invalid;
    double level_dbm = 0;                 ///< that comes nearest to its limit, or goes furthest beyond
    double limit_dbm = 0;                 ///< at that place
    std::optional<double> frequency_mhz;  ///< of that bin; nothing for a channel power
    std::string invalid;                  ///< why the verdict is INVALID

    /// Level above the limit in dB; negative below.
    double Excess() const { return level_dbm - limit_dbm; }
};

/// Either levels for channel powers, in dBm over the channel, or a line over frequency for graphs, in dBm in one RBW.
/// Thread: const use is safe from several threads.
class Limits {
public:
    struct Point {
        double frequency_mhz = 0;
        double level_dbm = 0;
    };

    /// @param text  a level in dBm such as "-75", or the path of a CSV file of 1 MiB at most
    static OSAL::Outcome<Limits> Read(const std::string& text);
    /// One level for every channel power.
    static OSAL::Outcome<Limits> OfLevel(double level_dbm);
    /// A CSV text. Its first line names the columns; "#" begins a comment line; blanks around fields don't count.
    ///   band,limit_dbm                        one channel power limit a band
    ///   band,channel,limit_dbm                one a channel; an empty channel field is for the rest of the band
    ///   band,channel,bandwidth_mhz,limit_dbm  the same for one channel width; an empty field is for any
    ///   frequency_mhz,limit_dbm               points of a line in rising order, straight between them, none outside
    /// A refusal begins with the number of the line at fault.
    static OSAL::Outcome<Limits> Parse(std::string_view csv);

    /// The limit is a line over frequency.
    bool IsLine() const { return !m_points.empty(); }
    const std::vector<Point>& Line() const { return m_points; }
    /// Limit of a channel's power, the most particular row that fits; nothing where there is none, and for a line.
    std::optional<double> ChannelDbm(const std::string& band, int channel, double bandwidth_mhz) const;
    /// The line at a frequency; nothing outside it.
    std::optional<double> LineDbm(double frequency_mhz) const;

    /// @param margin_db  not negative
    /// @return nothing when no limit is set for the reading
    std::optional<Judgement> Judge(const Reading& reading, double margin_db) const;

private:
    /// Band, channel and width; empty and 0 stand for any.
    using Key = std::tuple<std::string, int, double>;
    friend class LimitsReader;

    std::map<Key, double> m_levels;
    std::vector<Point> m_points;
};

}  // namespace TarnMeasure
