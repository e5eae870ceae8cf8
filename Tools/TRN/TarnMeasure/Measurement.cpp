#include "Measurement.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

#include "ChannelPlan.h"
#include "Inputs.h"
#include "Numbers.h"
#include "Peaks.h"

namespace TarnMeasure {
namespace {

constexpr double highestCode = 32700;  // of 32767; the rest is room for the DC offset that was taken off

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

/// The graph that shows most: max hold, else average, else the last sweep.
const std::vector<double>& StrongestGraph(const Request& request, const ChainResult& chain) {
    return request.maxHold ? chain.maxHold : request.average ? chain.average : chain.spectrum;
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
        m_binSum.resize(m_result.chains.size());
    }

    bool Tune() {
        return Run("-channel " + std::to_string(m_result.channel)) && (m_request.gainFile.empty() || TakeGain());
    }

    bool Sweep() {
        if (!Run("-trigger_now") || !Run("-update_spectrum")) return false;
        const auto spectra = SampleFiles::NumberLinesOf(m_text);
        if (spectra.size() != m_result.chains.size() || spectra[0].empty()) return Fail("no spectrum came back");
        if (!Run("-update_histogram")) return false;
        const auto codes =
            SampleFiles::NumberLinesOf(m_text);  // four lines a chain; the fourth is the lowest and the highest code
        if (codes.size() != 4 * spectra.size()) return Fail("no histogram came back");
        m_result.sampleRate_mhz = static_cast<double>(spectra[0].size()) * m_request.rbw_khz / 1000.0;
        for (std::size_t c = 0; c < spectra.size(); ++c) {
            AddSpectrum(c, spectra[c]);
            if (std::ranges::any_of(codes[4 * c + 3], [](double code) { return !(std::abs(code) < highestCode); }))
                ++m_result.chains[c].overloadedSweeps;
        }
        ++m_result.sweeps;
        return true;
    }

    /// Makes the results of the sweeps.
    void Finish() {
        for (std::size_t c = 0; c < m_result.chains.size() && m_result.sweeps > 0; ++c) {
            ChainResult& chain = m_result.chains[c];
            chain.power_dbm = Dbm(m_linearSum[c] / m_result.sweeps);
            for (const double sum : m_binSum[c])
                chain.average.push_back(Dbm(sum / m_result.sweeps));
            FindPeaks(chain);
        }
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
        if (m_result.invalid.empty()) m_result.invalid = answer.warning;
        return answer.ok || (!m_isInterrupted && Fail(m_text));
    }

    bool Fail(const std::string& why) {
        m_trouble = "channel " + std::to_string(m_result.channel) + ": " + why;
        return false;
    }

    /// The gain of the file holds for one setting only.
    bool TakeGain() {
        const auto isSilent = [this] { return m_text.find_first_not_of(" \r\n") == std::string::npos; };
        if (!Run("-gain_file_name " + m_request.gainFile)) return false;
        if (!isSilent()) return Fail(m_text);  // why it can't be read
        if (!Run("-set_gain_from_file")) return false;
        if (m_text.find("loaded successfully") != std::string::npos) return true;
        return Fail(isSilent() ? "the gain file has no row for this device, chain, frequency and width" : m_text);
    }

    void AddSpectrum(std::size_t c, const std::vector<double>& spectrum) {
        ChainResult& chain = m_result.chains[c];
        const double power = ChannelPowerDbm(spectrum, WidthMhz(m_request.bandwidth), m_result.sampleRate_mhz);
        m_linearSum[c] += Linear(power);
        chain.lowest_dbm = m_result.sweeps == 0 ? power : std::min(chain.lowest_dbm, power);
        chain.highest_dbm = m_result.sweeps == 0 ? power : std::max(chain.highest_dbm, power);
        chain.spectrum = spectrum;
        if (m_request.maxHold) {
            chain.maxHold.resize(spectrum.size(), -std::numeric_limits<double>::infinity());
            std::ranges::transform(chain.maxHold, spectrum, chain.maxHold.begin(),
                                   [](double held, double level) { return std::max(held, level); });
        }
        if (m_request.average) {
            m_binSum[c].resize(spectrum.size());
            std::ranges::transform(m_binSum[c], spectrum, m_binSum[c].begin(),
                                   [](double sum, double level) { return sum + Linear(level); });
        }
    }

    /// Those inside the channel.
    void FindPeaks(ChainResult& chain) const {
        const auto& graph = StrongestGraph(m_request, chain);
        const double half = WidthMhz(m_request.bandwidth) / 2;
        if (m_request.peaks == 0) return;
        for (const std::size_t bin : PeakBins(graph, m_request.peakExcursion_db)) {
            const double mhz = BinMhz(m_result, bin, graph.size());
            if (std::abs(mhz - m_result.centre_mhz) <= half) chain.peaks.push_back({mhz, graph[bin]});
            if (chain.peaks.size() == static_cast<std::size_t>(m_request.peaks)) return;
        }
    }

    const Request& m_request;
    const RunLine& m_run;
    ChannelResult m_result;
    std::vector<double> m_linearSum;
    std::vector<std::vector<double>> m_binSum;
    std::string m_text;
    std::string m_trouble;
    bool m_isInterrupted = false;
};

/// What stands before the first channel.
std::vector<std::string> SetupLines(const Request& request) {
    std::vector<std::string> lines = {
        "-reset_config -band " + request.band + " -bandwidth " + request.bandwidth,
        "-chain " + request.chain + " -rbw " + KeyNumber(request.rbw_khz),
        // tells the codes' range in less text than the samples
        "-histogram true",
    };
    if (!request.setup.empty()) lines.insert(lines.end() - 1, request.setup);
    return lines;
}

/// Channel numbers from `first` to `last`.
struct ChannelSpan {
    int first = 0, last = 0;
    std::string text;
    bool IsOne() const { return first == last; }
};

std::optional<int> WholeNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// "1, 6,36-48" taken apart, blanks dropped; nothing in it for "all", and for an empty text.
OSAL::Outcome<std::vector<ChannelSpan>> ReadChannelList(const std::string& list) {
    std::vector<ChannelSpan> spans;
    if (list == "all" || list.empty()) return spans;
    std::istringstream stream(list);
    for (std::string item; std::getline(stream, item, ',');) {
        std::erase_if(item, [](char c) { return c == ' ' || c == '\t'; });
        const auto dash = item.find('-');
        const auto first = WholeNumber(std::string_view(item).substr(0, dash));
        const auto last = dash == std::string::npos ? first : WholeNumber(std::string_view(item).substr(dash + 1));
        if (!first || !last || *last < *first)
            return OSAL::Refusal{"'" + item + "' is no channel number; write numbers such as 1,6,36-48, or 'all'"};
        spans.push_back({*first, *last, item});
    }
    return spans;
}

std::string JoinNumbers(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

/// The channels asked for, in the order asked; without any, all that are supported.
OSAL::Outcome<std::vector<int>> ChannelsAmong(const std::vector<ChannelSpan>& asked, const std::vector<int>& supported,
                                              const std::string& place) {
    if (supported.empty()) return OSAL::Refusal{"this adapter has no channel in " + place};
    if (asked.empty()) return supported;
    std::vector<int> channels;
    for (const ChannelSpan& span : asked) {
        bool isAny = false;
        for (const int channel : supported) {
            if (channel < span.first || channel > span.last) continue;
            isAny = true;
            if (std::ranges::find(channels, channel) == channels.end()) channels.push_back(channel);
        }
        if (!isAny)
            return OSAL::Refusal{"channel " + span.text + " isn't in " + place + "; there are " +
                                 JoinNumbers(supported)};
    }
    return channels;
}

/// What the limits judge of a chain; the graph is that of max hold, else of average, else of the last sweep.
Reading ReadingOf(const Result& result, const ChannelResult& channel, const ChainResult& chain) {
    const Request& request = result.request;
    Reading reading{.band = request.band,
                    .channel = channel.channel,
                    .bandwidth_mhz = WidthMhz(request.bandwidth),
                    .power_dbm = chain.power_dbm,
                    .graph = {},
                    .first_mhz = 0,
                    .step_mhz = request.rbw_khz / 1000.0,
                    .invalid = channel.invalid};
    const auto& graph = StrongestGraph(request, chain);
    for (std::size_t k = 0; k < graph.size(); ++k) {
        const double mhz = BinMhz(channel, k, graph.size());
        if (std::abs(mhz - channel.centre_mhz) > reading.bandwidth_mhz / 2) continue;
        if (reading.graph.empty()) reading.first_mhz = mhz;
        reading.graph.push_back(graph[k]);
    }
    if (!reading.invalid.empty()) return reading;
    if (chain.overloadedSweeps > 0)
        reading.invalid = "the converter was overloaded";
    else if (channel.sweeps < request.sweeps)
        reading.invalid =
            "only " + std::to_string(channel.sweeps) + " of " + std::to_string(request.sweeps) + " sweeps";
    return reading;
}

void Judge(Result& result) {
    const Request& request = result.request;
    if (!request.limits) return;
    for (ChannelResult& channel : result.channels)
        for (ChainResult& chain : channel.chains)
            chain.judgement = request.limits->Judge(ReadingOf(result, channel, chain), request.margin_db);
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
        const std::vector<double> flags = SampleFiles::NumbersOf(std::string_view(line).substr(at + tail.size()));
        int channel = 0;
        std::from_chars(line.data() + 1, line.data() + at, channel);
        if (*width < flags.size() && flags[*width] == 1) channels.push_back(channel);
    }
    return channels;
}

OSAL::Outcome<Plan> MakePlan(const Request& request, const std::string& supportedConfig) {
    const auto refuse = [](const std::string& why) { return OSAL::Refusal{why}; };
    if (const auto bandwidth = ReadBandwidth(request.bandwidth); !bandwidth) return bandwidth.Why();
    if (request.sweeps < 1) return refuse("at least one sweep is needed");
    const auto asked = ReadChannelList(request.channels);
    if (!asked) return asked.Why();
    std::string why;
    std::vector<std::string> bands;
    if (!request.band.empty()) {
        const auto band = ReadBand(request.band);
        if (!band) return band.Why();
        bands = {*band};
    } else {
        for (const RadioFacts::Band& band : RadioFacts::Bands)
            bands.emplace_back(band.name);
    }
    for (const std::string& band : bands) {
        auto channels = ChannelsAmong(*asked, SupportedChannels(supportedConfig, band, request.bandwidth),
                                      "band " + band + " at " + request.bandwidth + " MHz");
        if (channels) return Plan{band, std::move(*channels)};
        if (why.empty()) why = channels.Reason();
    }
    return refuse(request.band.empty() && !request.channels.empty() ? why + " (--band names another band)" : why);
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

double BinMhz(const ChannelResult& channel, std::size_t bin, std::size_t bins) {
    const double step = channel.sampleRate_mhz / static_cast<double>(bins);
    const std::size_t centreBin = bins / 2;
    return channel.centre_mhz + (static_cast<double>(bin) - static_cast<double>(centreBin)) * step;
}

bool Result::HasInvalid() const {
    return std::ranges::any_of(channels, [](const ChannelResult& channel) { return !channel.invalid.empty(); });
}

std::optional<Verdict> Result::Worst() const {
    std::optional<Verdict> worst;
    for (const ChannelResult& channel : channels)
        for (const ChainResult& chain : channel.chains)
            if (chain.judgement) worst = Graver(worst.value_or(Verdict::Pass), chain.judgement->verdict);
    return worst;
}

bool Result::Has(Verdict verdict) const {
    return std::ranges::any_of(channels, [&](const ChannelResult& channel) {
        return std::ranges::any_of(channel.chains, [&](const ChainResult& chain) {
            return chain.judgement && chain.judgement->verdict == verdict;
        });
    });
}

Result Measure(const Request& asked, const RunLine& run, const Progress& progress) {
    Result result;
    result.request = asked;
    Request& request = result.request;
    const auto end = [&](std::string why) {
        if (!why.empty()) result.trouble = std::move(why);
        Judge(result);
        return std::move(result);
    };
    const Answer config = run("-get_supported_config");
    if (config.interrupted) result.interrupted = true;
    if (!config.ok) return end(config.text);
    const auto plan = MakePlan(request, config.text);
    if (!plan) return end(plan.Reason());
    request.band = plan->band;
    for (const std::string& line : SetupLines(request)) {
        const Answer answer = run(line);
        result.interrupted = answer.interrupted;
        if (!answer.ok) return end(answer.text);
        if (!answer.warning.empty()) return end(answer.warning);
    }

    const std::size_t total = plan->channels.size() * static_cast<std::size_t>(request.sweeps);
    std::size_t done = 0;
    for (const int channel : plan->channels) {
        ChannelRun channelRun(request, channel, run);
        bool fine = channelRun.Tune();
        for (int k = 0; fine && k < request.sweeps && !result.interrupted; ++k) {
            result.interrupted = !progress(done, total, "channel " + std::to_string(channel));
            fine = result.interrupted || channelRun.Sweep();
            ++done;
        }
        channelRun.Finish();
        result.interrupted = result.interrupted || channelRun.IsInterrupted();
        const std::string trouble = channelRun.Trouble();
        const bool isShown = channelRun.Result().sweeps > 0 || !channelRun.Result().invalid.empty();
        if (isShown) result.channels.push_back(std::move(channelRun.Result()));
        if (!trouble.empty() || result.interrupted) return end(trouble);
    }
    progress(total, total, {});
    return end({});
}

}  // namespace TarnMeasure
