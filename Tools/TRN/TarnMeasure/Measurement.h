// A whole measurement made of command lines: plan, sweeps, results. Knows nothing of the plug-in but its keys.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Limits.h"
#include "OSAL/Outcome.h"

namespace TarnMeasure {

/// What the person asked for. Texts are those of the keys.
struct Request {
    std::string band;              ///< empty: the first one that has the channels
    std::string channels;          ///< "36", "36,40-48" or "all"; empty: the band's first channel at this width
    std::string bandwidth = "20";  ///< MHz
    std::string chain = "A";
    double rbw_khz = 39.0625;
    int sweeps = 10;
    bool maxHold = false;
    bool average = false;
    int peaks = 5;                ///< strongest peaks to report; 0: no search
    double peakExcursion_db = 6;  ///< how far a peak stands out
    std::string setup;            ///< further keys that run once before the first channel, such as gain settings
    std::string gainFile;         ///< as one token: its row for each channel makes the gain; empty: none
    std::optional<Limits> limits;
    double margin_db = 0;  ///< below the limit, not negative
};

struct Peak {
    double frequency_mhz = 0;
    double power_dbm = 0;  ///< in one RBW
};

/// One chain of one channel. Levels are at the antenna; graphs hold the whole span, lowest frequency first.
struct ChainResult {
    std::string chain;
    double power_dbm = 0;                ///< channel power, linear mean over the sweeps
    double lowest_dbm = 0;               ///< channel power of the weakest sweep
    double highest_dbm = 0;              ///< channel power of the strongest sweep
    std::vector<double> spectrum;        ///< last sweep, dBm in one RBW
    std::vector<double> maxHold;         ///< empty unless asked for
    std::vector<double> average;         ///< mean power over the sweeps in dBm in one RBW; empty unless asked for
    std::vector<Peak> peaks;             ///< strongest first, of max hold, else of average, else of the last sweep
    int overloadedSweeps = 0;            ///< with a code at the converter's end: their levels read low
    std::optional<Judgement> judgement;  ///< nothing where no limit is set
};

struct ChannelResult {
    int channel = 0;
    double centre_mhz = 0;
    double sampleRate_mhz = 0;
    int sweeps = 0;  ///< that were measured
    std::vector<ChainResult> chains;
    /// Why the channel counts as not measured: the receiver wasn't set up as asked. Its levels then mean nothing.
    std::string invalid;
};

/// What a file says of how it came about.
struct Provenance {
    std::string utc;      ///< "2026-11-23T03:04:05Z", when the measurement began
    std::string version;  ///< of the program
    std::string adapter;
    std::string air;
    std::string gain;     ///< and its source
    std::string command;  ///< that repeats it
};

struct Result {
    Request request;
    Provenance provenance;
    std::vector<ChannelResult> channels;  ///< in the order measured
    std::optional<std::string> trouble;   ///< why it ended early; what was measured stays
    bool interrupted = false;

    /// A channel counts as not measured.
    bool HasInvalid() const;
    /// The gravest verdict; nothing where no limit is set.
    std::optional<Verdict> Worst() const;
    bool Has(Verdict verdict) const;
};

/// Answer of one command line: the output text, or the error.
struct Answer {
    bool ok = false;
    std::string text;
    std::string warning = {};  ///< what went wrong though the line succeeded; empty when nothing did
    bool interrupted = false;  ///< given up before it answered: no further line may follow
};
using RunLine = std::function<Answer(const std::string& line)>;

/// Sweeps done of all, for a progress bar. False asks the measurement to end with what it has.
using Progress = std::function<bool(std::size_t done, std::size_t total, const std::string& what)>;

/// Width of the channel in MHz; 0 for a text that is no width.
double WidthMhz(const std::string& bandwidth);
/// Centre frequency of a channel in MHz; band is the text of the key.
double CentreMhz(const std::string& band, int channel);

/// Channels that the device supports at this band and width, out of the answer of -get_supported_config.
std::vector<int> SupportedChannels(const std::string& supportedConfig, const std::string& band,
                                   const std::string& bandwidth);

/// The request's channels, checked against the device.
struct Plan {
    std::string band;
    std::vector<int> channels;
};
OSAL::Outcome<Plan> MakePlan(const Request& request, const std::string& supportedConfig);

/// Channel power out of a spectrum in dBm a bin: the bins from -width/2 to +width/2, added as linear powers. A width
/// beyond the span counts the whole span.
double ChannelPowerDbm(const std::vector<double>& spectrum, double width_mhz, double sampleRate_mhz);

/// Frequency in MHz of a bin of a graph with `bins` bins.
double BinMhz(const ChannelResult& channel, std::size_t bin, std::size_t bins);

/// Runs the measurement and judges it. Ends early on a refused line or when `progress` says so, keeping whole channels
/// and, of the last channel, the sweeps that were made. A channel behind a line with a warning counts as not measured.
Result Measure(const Request& request, const RunLine& run, const Progress& progress);

}  // namespace TarnMeasure
