// A whole measurement made of command lines: plan, sweeps, results. Knows nothing of the plug-in but its keys.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TarnMeasure {

/// What the person asked for. Texts are those of the keys.
struct Request {
    std::string band = "2.4";
    std::string channels;          ///< "36", "36,40,44" or "all"; empty: the band's first channel at this width
    std::string bandwidth = "20";  ///< MHz
    std::string chain = "A";
    double rbw_khz = 39.0625;
    int sweeps = 10;
    bool maxHold = false;
    bool average = false;
    int peaks = 5;        ///< strongest peaks to report; 0: no search
    int peakWindow = 10;  ///< bins of one slice of the search, 5 to 80
    std::string setup;    ///< further keys that run once before the first channel, such as gain settings
};

struct Peak {
    double frequency_mhz = 0;
    double power_dbm = 0;  ///< in one RBW
};

/// One chain of one channel. Levels are at the antenna; graphs hold the whole span, lowest frequency first.
struct ChainResult {
    std::string chain;
    double power_dbm = 0;          ///< channel power, linear mean over the sweeps
    double lowest_dbm = 0;         ///< channel power of the weakest sweep
    double highest_dbm = 0;        ///< channel power of the strongest sweep
    std::vector<double> spectrum;  ///< last sweep, dBm in one RBW
    std::vector<double> maxHold;   ///< empty unless asked for
    std::vector<double> average;   ///< empty unless asked for
    std::vector<Peak> peaks;       ///< strongest first
    bool overloaded = false;       ///< a code of the last sweep stands at the converter's end: levels read low
};

struct ChannelResult {
    int channel = 0;
    double centre_mhz = 0;
    double sampleRate_mhz = 0;
    int sweeps = 0;  ///< that were measured
    std::vector<ChainResult> chains;
};

struct Result {
    Request request;
    std::vector<ChannelResult> channels;  ///< in the order measured
    std::optional<std::string> trouble;   ///< why it ended early; what was measured stays
    bool interrupted = false;
};

/// Answer of one command line: the output text, or the error.
struct Answer {
    bool ok = false;
    std::string text;
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

/// The request's channels, checked against the device; the text is the reason when it is refused.
struct Plan {
    std::vector<int> channels;
    std::string refusal;
};
Plan MakePlan(const Request& request, const std::string& supportedConfig);

/// Channel power out of a spectrum in dBm a bin: the bins from -width/2 to +width/2, added as linear powers. A width
/// beyond the span counts the whole span.
double ChannelPowerDbm(const std::vector<double>& spectrum, double width_mhz, double sampleRate_mhz);

/// Runs the measurement. Ends early on a refused line or when `progress` says so, keeping whole channels and, of the
/// last channel, the sweeps that were made.
Result Measure(const Request& request, const RunLine& run, const Progress& progress);

}  // namespace TarnMeasure
