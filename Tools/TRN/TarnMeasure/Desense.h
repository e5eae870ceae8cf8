// The burn-in desense test, driven line by line: every channel and chain of a configuration file is swept while the
// workload runs, on request once more before it without load, and each channel is judged.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Limits.h"
#include "OSAL/Process.h"

namespace TarnMeasure {

struct DesenseRequest {
    std::string config;            ///< file of nine lines KEY,VALUE
    std::string folder;            ///< gets the tables and messages.log
    bool idleBaseline = false;     ///< sweep without load first
    std::optional<Limits> limits;  ///< of levels in one RBW; without it 3 dB above each band's reference in it
    double margin_db = 1.0;
    std::string limitText = {};  ///< how the limits were given, for the report
};

/// What a command line of the front-end variant gave.
struct DesenseAnswer {
    bool ok = true;
    bool interrupted = false;           ///< a signal came, and the line didn't end: the plug-in is out of reach
    std::string error;                  ///< one sentence
    std::vector<std::string> messages;  ///< JSON, whole
    bool wereShown = false;             ///< whoever runs the lines showed the test's messages as they came
};

/// One step of the job, for a progress line.
struct DesenseStep {
    std::size_t done = 0;  ///< sweeps, of the one without load too
    std::size_t total = 0;
    double sweeping_s = 0;  ///< that those done took, waits left out
    std::string what;       ///< "5.2 channel 36, chain A, iteration 2, loaded"
};

struct DesenseChannel;

struct DesenseIo {
    std::function<DesenseAnswer(const std::string& line)> run;
    std::function<void(const std::string& text)> message;   ///< of the test, unless they were shown
    std::function<bool(const DesenseStep& step)> progress;  ///< false: stop here
    std::function<bool()> isLoaded;                         ///< whether the workload runs; asked behind each sweep

    // May be empty.
    /// A channel that was just measured, judged as far as it is known; without load it has its idle_db alone.
    std::function<void(const DesenseChannel& channel)> measured;
    /// True: before the next sweep the test rests, with its load ended.
    std::function<bool()> wantsRest;
    std::function<bool()> rest;  ///< returns at the end of the rest; false: stop here
};

/// A bin that stands out of its neighbours.
struct DesenseSpur {
    double frequency_mhz = 0;
    double baseband_mhz = 0;  ///< from the channel's centre
    double level_dbm = 0;
    std::string chain;
};

/// Levels of one chain in one RBW.
struct DesenseLevel {
    std::string chain;
    double average_dbm = 0;
    double peak_dbm = 0;
    std::vector<double> average, maximum;  ///< in-band bins, dBm
};

struct DesenseChannel {
    std::string band;  ///< "2.4", "5.2" or "6-7"
    int channel = 0;
    double centre_mhz = 0;
    std::vector<DesenseLevel> levels;  ///< empty when it couldn't be measured
    std::optional<double> desense_db;  ///< above the band's reference, out of the plug-in's summary
    std::optional<double> idle_db;     ///< the same without load
    std::vector<DesenseSpur> spurs;
    Judgement judgement;
    bool hasLimit = false;  ///< a level was held against a limit

    std::optional<double> Rise() const;  ///< dB that the load adds
    /// Whether its verdict says something yet.
    bool IsJudged() const { return hasLimit || !judgement.invalid.empty(); }
};

/// A channel of the configuration that wasn't tried.
struct DesenseLeftOut {
    std::string band;
    int channel = 0;   ///< 0: the text is no channel number
    std::string text;  ///< as the configuration has it
    std::string reason;
};

struct DesenseResult {
    std::string bandwidth, rbw_khz, chainMode;
    int iterations = 0;
    std::vector<DesenseChannel> channels;  ///< worst first
    std::vector<DesenseLeftOut> leftOut;   ///< costs no verdict
    std::vector<std::string> messages;
    std::vector<std::pair<std::string, std::string>> setUp;  ///< names and values: limit, margin, load, idle pass
    std::string trouble;    ///< why it ended early, or what went wrong besides; empty: nothing
    double duration_s = 0;  ///< waits included, by a clock that never jumps
    bool interrupted = false;
    bool outOfReach = false;  ///< interrupted within a line that goes on

    bool Has(Verdict verdict) const;
    /// The gravest; INVALID without a channel.
    Verdict Gravest() const;
};

/// dBm in one RBW that the test's desense is counted from; nothing for a text that is no band.
std::optional<double> DesenseReference(const std::string& band);

/// What a test leaves in its folder: the report and what programs read of the result, written by who has the result,
/// and the tables and messages of the run.
inline constexpr std::array<const char*, 7> DesenseFiles{
    "report.html", "summary.csv", "bins.csv", "messages.log", "result.json", "junit.xml", "summary-idle.csv"};

/// What a message of the plug-in says to a person, behind its time; nothing when it is no message of the test.
std::optional<std::string> DesenseSaid(const std::string& message);

/// Tells whether the workload runs on this machine, whoever started it. Thread: one at a time.
class WorkloadWatch {
public:
    bool IsRunning();

private:
    OSAL::ProcessInformation m_found;
};

/// Runs the test. Whatever ends it, what was measured is in the result and in the folder's files, and the load is
/// ended. An earlier test's files are removed once the configuration is known to be good. Thread: the caller's.
DesenseResult RunDesense(const DesenseRequest& request, const DesenseIo& io);

}  // namespace TarnMeasure
