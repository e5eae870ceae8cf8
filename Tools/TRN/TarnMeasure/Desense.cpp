#include "Desense.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>

#include "OSAL/WholeFile.h"
#include "TestConfigKeys.h"

namespace TarnMeasure {

namespace {

using Json = nlohmann::json;

constexpr double UsualRoom_db = 3.0;          ///< above the reference, without limits of one's own
constexpr double ReferenceRbw_khz = 39.0625;  ///< that the references are for
constexpr const char* LostLoad = "the workload ended before its time";
constexpr const char* IdleLoad = "a load was running in the idle pass";
constexpr const char* IdleAlone = "measured without load alone: its levels are idle ones";

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

struct BandRow {
    const char* name;      ///< of the key
    const char* messages;  ///< as messages write it
    const char* summary;   ///< as the summary writes it
    VesperParam list;      ///< its channels in the configuration
    double reference_dbm;
};
constexpr std::array<BandRow, 3> Bands{{{"2.4", "2.4", "2.4 GHz", VesperParamLowBand, -121.0},
                                        {"5.2", "5", "5 GHz", VesperParamHighBand, -122.0},
                                        {"6-7", "6-7", "6-7 GHz", VesperParamUltraHighBand, -122.0}}};

std::size_t BandNumber(const std::string& band) {
    return static_cast<std::size_t>(std::ranges::find(Bands, band, &BandRow::name) - Bands.begin());
}

std::string Quoted(const std::string& path) {
    return '"' + path + '"';
}

/// The text of a message's member as a number; nothing without one.
std::optional<double> NumberOf(const Json& object, const std::string& name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_string()) return std::nullopt;
    return std::strtod(member->get<std::string>().c_str(), nullptr);
}

Json Parsed(const std::string& message) {
    Json json = Json::parse(message, nullptr, false);
    return json.is_object() && json.contains("data") ? json : Json();
}

std::optional<std::string> SaidIn(const Json& message) {
    if (!message.is_object() || message["type"] != "Add Vesper Test Message Response") return std::nullopt;
    return message["data"].value("message", "");
}

std::string Stamped(const Json& message, const std::string& said) {
    return message["data"].value("timestamp", "") + "  " + said;
}

/// A line of the summary: whose, and its desense.
struct SummaryRow {
    std::string band;  ///< empty: no row of a channel
    int channel = 0;
    double desense_db = 0;
};

SummaryRow RowOf(const std::string& line) {
    std::array<std::string, 3> fields;
    std::istringstream stream(line);
    for (std::string& field : fields) {
        std::getline(stream, field, ',');
        field.erase(0, field.find_first_not_of(' '));
    }
    const auto band = std::ranges::find_if(Bands, [&](const BandRow& row) { return fields[2] == row.summary; });
    if (band == Bands.end()) return {};
    return {band->name, std::atoi(fields[0].c_str()), std::strtod(fields[1].c_str(), nullptr)};
}

/// A channel's number as the plug-in compares it: digits alone. 0 for any other text.
int ChannelNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && number > 0 && text.front() != '0' ? number : 0;
}

/// One test from its configuration to its verdicts.
class Test {
public:
    Test(const DesenseRequest& request, const DesenseIo& io) : m_request(request), m_io(io) {}

    DesenseResult Run() {
        const Clock::time_point begin = Clock::now();
        if (PathsAreFine() && ReadConfig() && MayMeasureIdle() && RemoveOldFiles()) {
            m_step.total = m_result.channels.size() * Chains().size() * static_cast<std::size_t>(m_result.iterations) *
                           (m_request.idleBaseline ? 2 : 1);
            bool goesOn = true;
            if (m_request.idleBaseline) {
                m_isIdle = true;
                goesOn = Pass("-vesper_disable_bit true -start_vesper_test");
                m_isIdle = false;
                goesOn = goesOn && ReadConfig();
            }
            if (goesOn) Pass("-start_vesper_test");
            KeepMessages();
            std::error_code error;
            std::filesystem::remove(InFolder("summary-idle.csv"), error);  // the result tells its figures
        }
        Judge();
        TellSetUp();
        m_result.duration_s = SecondsSince(begin);
        return std::move(m_result);
    }

private:
    void Fail(const std::string& reason) {
        if (m_result.trouble.empty()) m_result.trouble = reason;
    }

    /// Runs a line and passes the test's messages on. Nothing, with the reason kept, when it failed.
    std::optional<std::vector<Json>> Line(const std::string& line, std::string* reason = nullptr) {
        DesenseAnswer answer = m_io.run(line);
        std::vector<Json> messages;
        for (const std::string& text : answer.messages) {
            Json message = Parsed(text);
            if (message.is_null()) continue;
            if (const auto said = SaidIn(message)) {
                m_result.messages.push_back(Stamped(message, *said));
                m_log += '[' + message["data"].value("timestamp", "") + "] >> " + *said + '\n';
                if (!answer.wereShown) m_io.message(m_result.messages.back());
                m_hasStartedLoad |= *said == "BurnInTest process started.";
                TakeSpur(*said);
            }
            messages.push_back(std::move(message));
        }
        if (answer.interrupted) m_result.interrupted = m_result.outOfReach = true;
        if (answer.ok && !answer.interrupted) return messages;
        if (reason)
            *reason = answer.error;
        else if (!answer.interrupted)
            Fail(answer.error);
        return std::nullopt;
    }

    static const Json* Find(const std::vector<Json>& messages, const char* type) {
        const auto found = std::ranges::find_if(messages, [&](const Json& message) { return message["type"] == type; });
        return found == messages.end() ? nullptr : &(*found)["data"];
    }

    /// A command line has no way to write a quotation mark within a value.
    bool PathsAreFine() {
        for (const std::string& path : {m_request.config, m_request.folder})
            if (path.find('"') != std::string::npos)
                Fail("the path '" + path + "' holds a quotation mark, which no path of a test may");
        return m_result.trouble.empty();
    }

    /// What is measured beside a load that runs already is no idle figure.
    bool MayMeasureIdle() {
        if (!m_request.idleBaseline || !m_io.isLoaded()) return true;
        if (m_isLoadDisabled) {
            m_io.message("a load runs already: the figures without load hold it too");
            return true;
        }
        Fail("a load runs already, so that nothing can be measured without load: end it first");
        m_result.channels.clear();
        return false;
    }

    bool ReadConfig() {
        const auto messages = Line("-vesper_set_config_file " + Quoted(m_request.config));
        const Json* settings = messages ? Find(*messages, "Vesper Settings Response") : nullptr;
        if (!settings) return false;
        m_result.bandwidth = settings->value("bw", "");
        m_result.rbw_khz = settings->value("rbw", "");
        m_result.chainMode = settings->value("chainMode", "");
        m_result.iterations = std::atoi(settings->value("iterations", "").c_str());
        if (!m_result.channels.empty()) return true;
        if (!m_request.limits) m_limits = UsualLimits();
        for (const Json& band : settings->value("channels", Json::array())) {
            const auto row =
                std::ranges::find_if(Bands, [&](const BandRow& one) { return band.value("band", "") == one.messages; });
            for (const Json& width : band.value("bandwidths", Json::array())) {
                if (row == Bands.end() || width.value("bandwidth", "") != m_result.bandwidth) continue;
                for (const Json& channel : width.value("channels", Json::array()))
                    if (const int number = std::atoi(channel.value("value", "").c_str()); number > 0) {
                        DesenseChannel one;
                        one.band = row->name;
                        one.channel = number;
                        one.centre_mhz = NumberOf(channel, "frequency").value_or(0);
                        m_result.channels.push_back(std::move(one));
                    }
            }
        }
        FindLeftOut();
        if (m_result.channels.empty())
            Fail("the configuration names no channel that the adapter has at " + m_result.bandwidth + " MHz");
        if (!m_result.trouble.empty()) m_result.channels.clear();
        return m_result.trouble.empty();
    }

    /// So that the folder never holds files of two tests.
    bool RemoveOldFiles() {
        for (const char* name : DesenseFiles) {
            std::error_code error;
            std::filesystem::remove(std::filesystem::path(m_request.folder) / name, error);
            if (error) Fail("can't remove the older '" + m_request.folder + "/" + name + "': " + error.message());
        }
        if (!m_result.trouble.empty()) m_result.channels.clear();
        return m_result.trouble.empty();
    }

    /// The plug-in leaves out without a word what the adapter hasn't.
    void FindLeftOut() {
        std::ifstream file(m_request.config);
        std::string line;
        for (std::size_t k = 0; k < VesperParamCount && std::getline(file, line); ++k) {
            const std::size_t comma = line.find(',');
            if (comma == std::string::npos) continue;
            const std::string key = line.substr(0, comma);
            const std::string value = line.substr(comma + 1, line.find_first_of(",\r", comma + 1) - comma - 1);
            if (key == TarnKeys::TestConfigKeys[VesperParamBitcfg]) m_loadFile = value;
            if (key == TarnKeys::TestConfigKeys[VesperParamDisableBit])
                m_isLoadDisabled = value.size() == 4 && std::tolower(static_cast<unsigned char>(value[0])) == 't';
            for (const BandRow& row : Bands)
                if (key == TarnKeys::TestConfigKeys[row.list]) FindLeftOut(row, value);
        }
    }

    void FindLeftOut(const BandRow& row, const std::string& list) {
        // The plug-in drops the first and the last character unseen, so that digits there would change a channel.
        if (!list.empty() && (std::isdigit(static_cast<unsigned char>(list.front())) ||
                              std::isdigit(static_cast<unsigned char>(list.back()))))
            Fail(std::string(TarnKeys::TestConfigKeys[row.list]) +
                 ": the channels must stand in brackets, such as [1;6]");
        std::istringstream tokens(list.size() < 2 ? "" : list.substr(1, list.size() - 2));
        for (std::string text; std::getline(tokens, text, ';');) {
            const int number = ChannelNumber(text);
            const bool isKnown =
                std::ranges::any_of(m_result.channels,
                                    [&](const auto& one) { return one.channel == number && one.band == row.name; }) ||
                std::ranges::any_of(m_result.leftOut,
                                    [&](const auto& one) { return one.text == text && one.band == row.name; });
            if (text.empty() || isKnown) continue;
            m_result.leftOut.push_back({row.name, number, text,
                                        number > 0 ? "the adapter hasn't it at " + m_result.bandwidth + " MHz"
                                                   : "'" + text + "' isn't a channel number, digits alone"});
            m_io.message("left out: " + std::string(row.name) + " GHz channel " + text + ", " +
                         m_result.leftOut.back().reason);
        }
    }

    std::vector<std::string> Chains() const {
        if (m_result.chainMode == "A->B") return {"A", "B"};
        return {m_result.chainMode};
    }

    std::size_t ChainCount() const { return Chains()[0] == "AB" ? 2 : Chains().size(); }

    bool IsComplete(const DesenseChannel& channel) const { return channel.levels.size() >= ChainCount(); }

    /// One sweep of everything. False: the test ends here.
    bool Pass(const std::string& start) {
        bool goesOn = Line(start).has_value();
        const bool hasBegun = goesOn;
        if (hasBegun) ForgetLevels();
        for (DesenseChannel& channel : m_result.channels) {
            m_current = &channel;
            for (const std::string& chain : Chains())
                goesOn = goesOn && SweepChain(channel, chain);
            if (goesOn && !channel.levels.empty()) TakeGraph(channel);
            if (goesOn) TellMeasured(channel);
        }
        m_current = nullptr;
        if (hasBegun) Export();  // before the load's end, which may take longer than whoever stops it waits
        if (!m_result.outOfReach) Line("-stop_vesper_test");
        return goesOn && !m_result.outOfReach;
    }

    /// What a pass measures takes the place of the one before.
    void ForgetLevels() {
        m_levelsAreIdle = m_isIdle;
        for (DesenseChannel& channel : m_result.channels) {
            channel.levels.clear();
            channel.spurs.clear();
            if (channel.judgement.invalid != IdleLoad) channel.judgement = {};
        }
    }

    /// All iterations of a channel with one chain, or up to what makes them worthless. False: the test ends here.
    bool SweepChain(DesenseChannel& channel, const std::string& chain) {
        const std::size_t begin = m_step.done;
        std::string reason = IsLoadLost() ? LostLoad : "";
        for (int i = 1; reason.empty() && i <= m_result.iterations; ++i, ++m_step.done) {
            m_step.what = channel.band + " channel " + std::to_string(channel.channel) + ", chain " + chain +
                          ", iteration " + std::to_string(i) + (m_hasStartedLoad ? ", loaded" : ", idle");
            if (!MaySweep()) return false;
            const Clock::time_point sweepBegin = Clock::now();
            Sweep(channel, chain, i, reason);
            m_step.sweeping_s += SecondsSince(sweepBegin);
            if (m_result.outOfReach) return false;
            if (reason.empty() && IsLoadLost()) reason = LostLoad;
            if (reason.empty() && m_isIdle && !m_isLoadDisabled && m_io.isLoaded()) reason = IdleLoad;
        }
        m_step.done = begin + static_cast<std::size_t>(m_result.iterations);
        if (!reason.empty()) channel.judgement.invalid = reason;
        return true;
    }

    /// A level that was read while the workload had died proves nothing.
    bool IsLoadLost() {
        if (!m_hasLostLoad && m_hasStartedLoad && !m_io.isLoaded()) {
            m_hasLostLoad = true;
            Fail(std::string(LostLoad) + "; tarn-workload.log in the folder for temporary files may say why");
        }
        return m_hasLostLoad;
    }

    /// Rests when that is wanted. False: the test ends here.
    bool MaySweep() {
        bool goesOn = true;
        if (m_io.wantsRest && m_io.wantsRest()) {
            Export();  // an end while the load comes up again leaves no way to
            Line("-stop_vesper_test");
            if (m_result.outOfReach) return false;
            goesOn = m_io.rest();
            if (goesOn && !Line("-resume_vesper_test")) return false;
        }
        goesOn = goesOn && m_io.progress(m_step);
        if (!goesOn) m_result.interrupted = true;
        return goesOn;
    }

    /// The summary is written anew behind each channel: it tells the figures, and outlives the process.
    void TellMeasured(const DesenseChannel& channel) {
        if (!ExportSummary() || !m_io.measured) return;
        DesenseChannel told = channel;
        if (!m_isIdle) Judge(told);
        m_io.measured(told);
    }

    void Sweep(DesenseChannel& channel, const std::string& chain, int iteration, std::string& reason) {
        const std::string done = std::to_string(iteration - 1);
        const auto messages =
            Line("-band " + channel.band + " -bandwidth " + m_result.bandwidth + " -channel " +
                     std::to_string(channel.channel) + " -chain " + chain + " -rbw " + m_result.rbw_khz +
                     " -channel_average true -channel_average_counter " + done + "," + done + "," + done +
                     " -channel_average_sweep_val " + std::to_string(m_result.iterations) +
                     " -maxhold true -vesper_current_iteration " + std::to_string(iteration) + " -trigger_now",
                 &reason);
        if (!messages) return;
        const Json* response = Find(*messages, "Trigger Response Vesper");
        if (!response || iteration < m_result.iterations) return;
        for (const std::string& one : chain == "AB" ? std::vector<std::string>{"A", "B"} : std::vector{chain}) {
            const std::string suffix = chain == "AB" ? one : "";
            const auto average = NumberOf(*response, "PowerAverage" + suffix);
            const auto peak = NumberOf(*response, "MaxPeak" + suffix);
            if (!average || !peak) continue;
            DesenseLevel level;
            level.chain = one;
            level.average_dbm = *average;
            level.peak_dbm = *peak;
            channel.levels.push_back(std::move(level));
        }
    }

    void TakeGraph(DesenseChannel& channel) {
        const auto messages = Line("-vesper_get_channel_data " + std::to_string(channel.channel) + "," +
                                   std::to_string(BandNumber(channel.band)));
        const Json* slots = messages ? Find(*messages, "Vesper Channel Data Response") : nullptr;
        if (!slots) return;
        for (DesenseLevel& level : channel.levels) {
            const std::size_t slot = ChainCount() == 2 && level.chain == "B" ? 1 : 0;
            if (slot >= slots->size()) continue;
            level.average = InBand((*slots)[slot].value("averageData", Json::array()));
            level.maximum = InBand((*slots)[slot].value("maxData", Json::array()));
        }
    }

    /// The channel's part of a spectrum, lowest frequency first.
    std::vector<double> InBand(const Json& bins) const {
        const double rbw_mhz = std::strtod(m_result.rbw_khz.c_str(), nullptr) / 1000.0;
        const double width = std::strtod(m_result.bandwidth.c_str(), nullptr) / rbw_mhz;
        const std::size_t count = std::min(bins.size(), static_cast<std::size_t>(width > 0 ? width : 0));
        std::vector<double> inBand;
        for (std::size_t k = (bins.size() - count) / 2; inBand.size() < count; ++k)
            inBand.push_back(bins[k].is_number() ? bins[k].get<double>() : std::nan(""));
        return inBand;
    }

    /// A spur is told in a message alone.
    void TakeSpur(const std::string& text) {
        constexpr const char* Form =
            "A Spur found in Channel: %*f freq: %lf, Chain: %1[AB],  Spur Value: %lf, BB Freq: %lf";
        DesenseSpur spur;
        char chain[2] = "";
        if (!m_current ||
            std::sscanf(text.c_str(), Form, &spur.frequency_mhz, chain, &spur.level_dbm, &spur.baseband_mhz) != 4)
            return;
        spur.chain = chain;
        spur.frequency_mhz = m_current->centre_mhz + spur.baseband_mhz;  // the message rounds the frequency itself
        const auto same = std::ranges::find_if(m_current->spurs, [&](const DesenseSpur& known) {
            return known.chain == spur.chain && std::abs(known.frequency_mhz - spur.frequency_mhz) < 1e-6;
        });
        if (same == m_current->spurs.end())
            m_current->spurs.push_back(spur);
        else
            same->level_dbm = std::max(same->level_dbm, spur.level_dbm);
    }

    std::string InFolder(const char* name) const { return m_request.folder + "/" + name; }

    void Export() {
        if (ExportSummary() && !m_isIdle &&
            std::ranges::any_of(m_result.channels, [&](const auto& one) { return IsComplete(one); }))
            Line("-dump_vesper_data " + Quoted(InFolder("bins.csv")));
    }

    /// Writes the summary of the pass and takes its figures. The plug-in counts a chain that is missing as 0 dBm, so
    /// that a channel stands in the file only when it is complete, and the file only with a channel. False: it failed.
    bool ExportSummary() {
        if (m_result.outOfReach) return false;
        const std::string path = InFolder(m_isIdle ? "summary-idle.csv" : "summary.csv");
        if (!Line("-export_vesper_result " + Quoted(path))) return false;
        std::ifstream file(path);
        std::string line, kept;
        if (!std::getline(file, line)) {
            Fail("can't read '" + path + "', which holds the desense of each channel");
            return false;
        }
        kept = line + '\n';
        bool hasLeftOut = false, hasRow = false;
        while (std::getline(file, line)) {
            const bool isKept = TakeRow(RowOf(line));
            (isKept ? hasRow : hasLeftOut) = true;
            if (isKept) kept += line + '\n';
        }
        file.close();
        if (hasRow && !hasLeftOut) return true;
        std::error_code error;
        if (!hasRow) std::filesystem::remove(path, error);
        if (error) Fail("can't remove '" + path + "': " + error.message());
        if (const auto written = hasRow ? OSAL::WriteWholeFile(path, kept) : OSAL::Outcome<>(); !written)
            Fail(written.Reason());
        return true;
    }

    /// False: the row is of no channel that was measured whole.
    bool TakeRow(const SummaryRow& row) {
        for (DesenseChannel& one : m_result.channels) {
            if (one.band != row.band || one.channel != row.channel || !IsComplete(one)) continue;
            if (m_isIdle && one.judgement.invalid == IdleLoad) return false;
            (m_isIdle ? one.idle_db : one.desense_db) = row.desense_db;
            return true;
        }
        return false;
    }

    /// The driver's own copy: the plug-in's is out of reach behind a line that was given up.
    void KeepMessages() {
        const auto written = OSAL::WriteWholeFile(InFolder("messages.log"), m_log);
        if (!written) Fail(written.Reason());
    }

    void Judge() {
        for (DesenseChannel& channel : m_result.channels) {
            if (m_levelsAreIdle && !channel.levels.empty() && channel.judgement.invalid.empty())
                channel.judgement.invalid = IdleAlone;
            Judge(channel);
        }
        std::ranges::stable_sort(m_result.channels, [](const DesenseChannel& a, const DesenseChannel& b) {
            return a.desense_db.value_or(-1e9) > b.desense_db.value_or(-1e9);
        });
    }

    void Judge(DesenseChannel& channel) {
        std::string invalid = channel.judgement.invalid;
        if (invalid.empty() && !IsComplete(channel)) invalid = "not measured";
        std::optional<Judgement> worst;
        for (const DesenseLevel& level : channel.levels) {
            Reading reading;
            reading.band = channel.band;
            reading.channel = channel.channel;
            reading.bandwidth_mhz = std::strtod(m_result.bandwidth.c_str(), nullptr);
            reading.power_dbm = level.average_dbm;
            reading.graph = level.average;
            reading.step_mhz = std::strtod(m_result.rbw_khz.c_str(), nullptr) / 1000.0;
            reading.first_mhz = channel.centre_mhz - reading.bandwidth_mhz / 2;
            const auto judged = m_limits.Judge(reading, m_request.margin_db);
            if (judged && (!worst || !(judged->Excess() <= worst->Excess()))) worst = judged;
        }
        if (worst) channel.judgement = *worst;
        channel.hasLimit = worst.has_value();
        if (!worst && invalid.empty()) invalid = "no limit is set for it";
        if (invalid.empty()) return;
        channel.judgement.verdict = Verdict::Invalid;
        channel.judgement.invalid = invalid;
    }

    /// The references are levels in one RBW, so that they rise with it.
    Limits UsualLimits() const {
        const double rbw_khz = std::strtod(m_result.rbw_khz.c_str(), nullptr);
        const double wider_db = rbw_khz > 0 ? 10 * std::log10(rbw_khz / ReferenceRbw_khz) : 0;
        std::string csv = "band,limit_dbm\n";
        for (const BandRow& row : Bands)
            csv += std::string(row.name) + "," + std::to_string(row.reference_dbm + UsualRoom_db + wider_db) + "\n";
        return *Limits::Parse(csv);
    }

    void TellSetUp() {
        char margin[32];
        std::snprintf(margin, sizeof margin, "%.1f dB", m_request.margin_db);
        const std::string limit = m_request.limits ? m_request.limitText : "3 dB above each band's reference";
        std::string load = m_loadFile + (m_hasLostLoad      ? ": " + std::string(LostLoad)
                                         : m_hasStartedLoad ? ": it ran"
                                                            : ": it didn't run");
        if (m_isLoadDisabled) load = "none (disableBit,true)";
        m_result.setUp = {{"limit", limit},
                          {"margin", margin},
                          {"load", load},
                          {"without load first", m_request.idleBaseline ? "yes" : "no"}};
    }

    const DesenseRequest& m_request;
    const DesenseIo& m_io;
    Limits m_limits = m_request.limits.value_or(Limits());
    DesenseResult m_result;
    DesenseChannel* m_current = nullptr;
    DesenseStep m_step;
    std::string m_loadFile;
    std::string m_log;  ///< the messages as the plug-in's own file has them
    bool m_isLoadDisabled = false;
    bool m_hasStartedLoad = false;
    bool m_hasLostLoad = false;
    bool m_isIdle = false;         ///< the pass without load
    bool m_levelsAreIdle = false;  ///< no pass under load has begun since
};

}  // namespace

std::optional<double> DesenseChannel::Rise() const {
    if (!desense_db || !idle_db) return std::nullopt;
    return *desense_db - *idle_db;
}

bool DesenseResult::Has(Verdict verdict) const {
    return std::ranges::any_of(channels, [=](const auto& channel) { return channel.judgement.verdict == verdict; });
}

Verdict DesenseResult::Gravest() const {
    Verdict gravest = channels.empty() ? Verdict::Invalid : Verdict::Pass;
    for (const DesenseChannel& channel : channels)
        gravest = Graver(gravest, channel.judgement.verdict);
    return gravest;
}

std::optional<double> DesenseReference(const std::string& band) {
    const std::size_t number = BandNumber(band);
    if (number == Bands.size()) return std::nullopt;
    return Bands[number].reference_dbm;
}

std::optional<std::string> DesenseSaid(const std::string& message) {
    const Json json = Parsed(message);
    const auto said = SaidIn(json);
    if (!said) return std::nullopt;
    return Stamped(json, *said);
}

bool WorkloadWatch::IsRunning() {
    if (OSAL::IsRunning(m_found)) return true;
    const auto all = OSAL::FindProcesses("bit");
    m_found = all.empty() ? OSAL::ProcessInformation{} : all.front();
    return !all.empty();
}

DesenseResult RunDesense(const DesenseRequest& request, const DesenseIo& io) {
    return Test(request, io).Run();
}

}  // namespace TarnMeasure
