#include "Measurement.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <sstream>
#include <string_view>

#include "ChannelPlan.h"

namespace TarnMeasure {
namespace {

constexpr int longestAverage = 100;    // sweeps that one averaging run of the engine can hold
constexpr double highestCode = 32700;  // of 32767; the rest is room for the DC offset that was taken off

/// "A|B" as "A, B".
std::string Listed(std::string_view choices) {
    std::string text;
    for (const char c : choices)
        text += c == '|' ? ", " : std::string(1, c);
    return text;
}

std::vector<double> Numbers(std::string_view line) {
    std::vector<double> numbers;
    const char* at = line.data();
    const char* const end = at + line.size();
    while (at < end) {
        double value = 0;
        const auto [next, error] = std::from_chars(at, end, value);
        if (error != std::errc()) {
            ++at;
            continue;
        }
        numbers.push_back(value);
        at = next;
    }
    return numbers;
}

std::vector<std::vector<double>> NumberLines(const std::string& text) {
    std::vector<std::vector<double>> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(Numbers(line));
    return lines;
}

double Linear(double dbm) {
    return std::pow(10.0, dbm / 10.0);
}

double Dbm(double linear) {
    return 10.0 * std::log10(linear);
}

std::vector<std::string> ChainNames(const std::string& chain) {
    if (chain == "AB") return {"A", "B"};
    return {chain};
}

std::string KeyNumber(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

/// Drives one channel and gathers what its sweeps answer.
class ChannelRun {
public:
    ChannelRun(const Request& request, int channel, const RunLine& run) : m_request(request), m_run(run) {
        m_result.channel = channel;
        m_result.centre_mhz = CentreMhz(request.band, channel);
        for (const std::string& name : ChainNames(request.chain))
            m_result.chains.emplace_back().chain = name;
        m_linearSum.assign(m_result.chains.size(), 0.0);
    }

    bool Tune() {
        return Run("-channel " + std::to_string(m_result.channel)) && (!m_request.average || Run("-clear_average"));
    }

    bool Sweep() {
        const std::string count = std::to_string(std::min(m_result.sweeps, longestAverage - 1));
        const bool counted = !m_request.average || Run("-channel_average_counter " + count + "," + count + "," + count);
        if (!counted || !Run("-trigger_now") || !Run("-update_spectrum")) return false;
        const auto lines = NumberLines(m_text);
        if (lines.size() != m_result.chains.size() || lines[0].empty()) return Fail("no spectrum came back");
        m_result.sampleRate_mhz = static_cast<double>(lines[0].size()) * m_request.rbw_khz / 1000.0;
        for (std::size_t c = 0; c < lines.size(); ++c)
            AddSpectrum(c, lines[c]);
        ++m_result.sweeps;
        return true;
    }

    /// Reads what the engine kept over the sweeps.
    bool Finish() {
        if (m_result.sweeps == 0) return true;
        for (std::size_t c = 0; c < m_result.chains.size(); ++c)
            m_result.chains[c].power_dbm = Dbm(m_linearSum[c] / m_result.sweeps);
        return (!m_request.maxHold || Fetch("-update_maxhold", &ChainResult::maxHold)) &&
               (!m_request.average || Fetch("-update_channel_average", &ChainResult::average)) && FindPeaks() &&
               CheckOverload();
    }

    ChannelResult& Result() { return m_result; }
    const std::string& Trouble() const { return m_trouble; }
    bool IsInterrupted() const { return m_isInterrupted; }

private:
    bool Run(const std::string& line) {
        if (m_isInterrupted) return false;
        Answer answer = m_run(line);
        m_isInterrupted = answer.interrupted;
        m_text = std::move(answer.text);
        return answer.ok || (!m_isInterrupted && Fail(m_text));
    }

    bool Fail(const std::string& why) {
        m_trouble = "channel " + std::to_string(m_result.channel) + ": " + why;
        return false;
    }

    void AddSpectrum(std::size_t c, const std::vector<double>& spectrum) {
        ChainResult& chain = m_result.chains[c];
        chain.spectrum = spectrum;
        const double power = ChannelPowerDbm(spectrum, WidthMhz(m_request.bandwidth), m_result.sampleRate_mhz);
        m_linearSum[c] += Linear(power);
        chain.lowest_dbm = m_result.sweeps == 0 ? power : std::min(chain.lowest_dbm, power);
        chain.highest_dbm = m_result.sweeps == 0 ? power : std::max(chain.highest_dbm, power);
    }

    bool Fetch(const char* key, std::vector<double> ChainResult::*graph) {
        if (!Run(key)) return false;
        auto lines = NumberLines(m_text);
        if (lines.size() != m_result.chains.size()) return Fail(m_text);
        for (std::size_t c = 0; c < lines.size(); ++c)
            m_result.chains[c].*graph = std::move(lines[c]);
        return true;
    }

    bool FindPeaks() {
        if (m_request.peaks == 0) return true;
        if (!Run("-find_peaks " + std::to_string(m_request.peakWindow)) || !Run("-update_peaks")) return false;
        const auto lines = NumberLines(m_text);
        for (std::size_t c = 0; c < m_result.chains.size() && c < lines.size(); ++c)
            for (std::size_t k = 0; k + 1 < lines[c].size() && k / 2 < static_cast<std::size_t>(m_request.peaks);
                 k += 2)
                m_result.chains[c].peaks.push_back({BinCentreMhz(lines[c][k]), lines[c][k + 1]});
        return true;
    }

    /// The bin centre next to a frequency, which the plug-in gives with six significant digits.
    double BinCentreMhz(double frequency_mhz) const {
        const double step = m_request.rbw_khz / 1000.0;
        return m_result.centre_mhz + std::round((frequency_mhz - m_result.centre_mhz) / step) * step;
    }

    /// Of the last sweep only: the samples are ten times as much text as the spectrum.
    bool CheckOverload() {
        if (!Run("-update_iq")) return false;
        const auto lines = NumberLines(m_text);  // I, then Q, of each chain
        if (lines.size() != 2 * m_result.chains.size()) return Fail("no samples came back");
        for (std::size_t k = 0; k < lines.size(); ++k)
            if (std::ranges::any_of(lines[k], [](double code) { return std::abs(code) >= highestCode; }))
                m_result.chains[k / 2].overloaded = true;
        return true;
    }

    const Request& m_request;
    const RunLine& m_run;
    ChannelResult m_result;
    std::vector<double> m_linearSum;
    std::string m_text;
    std::string m_trouble;
    bool m_isInterrupted = false;
};

std::vector<std::string> SetupLines(const Request& request) {
    const auto flag = [](bool on) { return on ? "true" : "false"; };
    std::vector<std::string> lines = {
        "-reset_config -band " + request.band + " -bandwidth " + request.bandwidth,
        "-chain " + request.chain + " -rbw " + KeyNumber(request.rbw_khz),
        std::string("-maxhold ") + flag(request.maxHold) + " -channel_average " + flag(request.average),
    };
    if (!request.setup.empty()) lines.push_back(request.setup);
    return lines;
}

std::string JoinNumbers(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

}  // namespace

double WidthMhz(const std::string& bandwidth) {
    const auto number = RadioFacts::FindBandwidth(bandwidth);
    return number ? RadioFacts::WidthMhz(*number) : 0.0;
}

double CentreMhz(const std::string& band, int channel) {
    const auto number = RadioFacts::FindBand(band);
    return number ? RadioFacts::CentreMhz(*number, channel) : 0.0;
}

std::vector<int> SupportedChannels(const std::string& supportedConfig, const std::string& band,
                                   const std::string& bandwidth) {
    const auto row = RadioFacts::FindBand(band);
    const auto width = RadioFacts::FindBandwidth(bandwidth);
    std::vector<int> channels;
    if (!row || !width) return channels;
    const std::string tail = "," + std::string(RadioFacts::Bands[*row].code) + "),";
    std::istringstream stream(supportedConfig);
    for (std::string line; std::getline(stream, line);) {
        const auto at = line.find(tail);
        if (line.empty() || line[0] != '(' || at == std::string::npos) continue;
        const std::vector<double> flags = Numbers(std::string_view(line).substr(at + tail.size()));
        int channel = 0;
        std::from_chars(line.data() + 1, line.data() + at, channel);
        if (*width < flags.size() && flags[*width] == 1) channels.push_back(channel);
    }
    return channels;
}

Plan MakePlan(const Request& request, const std::string& supportedConfig) {
    if (!RadioFacts::FindBand(request.band))
        return {{}, "band '" + request.band + "' isn't one of " + Listed(RadioFacts::BandChoices)};
    if (!RadioFacts::FindBandwidth(request.bandwidth))
        return {{}, "bandwidth '" + request.bandwidth + "' isn't one of " + Listed(RadioFacts::BandwidthChoices)};
    if (request.sweeps < 1) return {{}, "at least one sweep is needed"};
    if (request.average && request.sweeps > longestAverage)
        return {{}, "an average holds " + std::to_string(longestAverage) + " sweeps at most; ask for fewer --sweeps"};
    const std::vector<int> supported = SupportedChannels(supportedConfig, request.band, request.bandwidth);
    const std::string place = "band " + request.band + " at " + request.bandwidth + " MHz";
    if (supported.empty()) return {{}, "this adapter has no channel in " + place};
    if (request.channels == "all") return {supported, {}};
    if (request.channels.empty()) return {{supported.front()}, {}};

    Plan plan;
    std::istringstream stream(request.channels);
    for (std::string item; std::getline(stream, item, ',');) {
        int channel = 0;
        const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), channel);
        if (error != std::errc() || end != item.data() + item.size())
            return {{}, "'" + item + "' is no channel number; write numbers split by commas, or 'all'"};
        if (std::ranges::find(supported, channel) == supported.end())
            return {{}, "channel " + item + " isn't in " + place + "; there are " + JoinNumbers(supported)};
        if (std::ranges::find(plan.channels, channel) == plan.channels.end()) plan.channels.push_back(channel);
    }
    if (plan.channels.empty()) return {{}, "no channel is named"};
    return plan;
}

double ChannelPowerDbm(const std::vector<double>& spectrum, double width_mhz, double sampleRate_mhz) {
    const auto bins = static_cast<std::ptrdiff_t>(spectrum.size());
    if (bins == 0 || sampleRate_mhz <= 0) return -std::numeric_limits<double>::infinity();
    const double share = std::clamp(width_mhz / sampleRate_mhz, 0.0, 1.0);
    const auto half = static_cast<std::ptrdiff_t>(share * static_cast<double>(bins) * 0.5);
    double sum = 0;
    for (std::ptrdiff_t k = -half; k <= half; ++k)  // the centre lies at bins / 2; both ends count, as the engine does
        sum += Linear(spectrum[static_cast<std::size_t>((k + bins / 2 + bins) % bins)]);
    return Dbm(sum);
}

Result Measure(const Request& request, const RunLine& run, const Progress& progress) {
    Result result;
    result.request = request;
    const auto refuse = [&](const std::string& why) {
        result.trouble = why;
        return result;
    };
    const Answer config = run("-get_supported_config");
    if (!config.ok) return refuse(config.text);
    const Plan plan = MakePlan(request, config.text);
    if (!plan.refusal.empty()) return refuse(plan.refusal);
    for (const std::string& line : SetupLines(request))
        if (const Answer answer = run(line); !answer.ok) return refuse(answer.text);

    const std::size_t total = plan.channels.size() * static_cast<std::size_t>(request.sweeps);
    std::size_t done = 0;
    for (const int channel : plan.channels) {
        ChannelRun channelRun(request, channel, run);
        bool fine = channelRun.Tune();
        for (int k = 0; fine && k < request.sweeps && !result.interrupted; ++k) {
            result.interrupted = !progress(done, total, "channel " + std::to_string(channel));
            fine = result.interrupted || channelRun.Sweep();
            ++done;
        }
        std::string trouble = channelRun.Trouble();
        if (!channelRun.Finish() && trouble.empty()) trouble = channelRun.Trouble();
        if (channelRun.Result().sweeps > 0) result.channels.push_back(std::move(channelRun.Result()));
        result.interrupted = result.interrupted || channelRun.IsInterrupted();
        if (!trouble.empty()) return refuse(trouble);
        if (result.interrupted) return result;
    }
    progress(total, total, {});
    return result;
}

}  // namespace TarnMeasure
