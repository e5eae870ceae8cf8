// Messages out: what the plug-in sent becomes sweeps and messages with numbers, and the state is told and kept.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "OSAL/WholeFile.h"
#include "Station.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;
using namespace std::chrono_literals;

/// Never a name that a request can say.
constexpr const char* stateName = ".tarn-state.json";
constexpr auto saveDelay = 1000ms;
constexpr auto channelsPeriod = 500ms;

Json NumberOrNull(const std::optional<double>& value) {
    return value ? Json(*value) : Json(nullptr);
}

/// Whether a code is within 0.2 dB of the converter's end: samples come without their mean, so that the end itself is
/// seldom met.
bool IsAtEnd(double code) {
    return std::abs(code) >= 32000;
}

/// The same of samples as text.
bool HoldsEnd(std::string_view text) {
    const auto isDigit = [&](std::size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
    for (std::size_t at = text.find("32"); at != std::string_view::npos; at = text.find("32", at + 1))
        if (!isDigit(at - 1) && isDigit(at + 2) && isDigit(at + 3) && isDigit(at + 4) && !isDigit(at + 5)) return true;
    return false;
}

/// The message of this type among those of a sweep; empty when it isn't there.
std::string_view Find(const std::vector<std::string>& messages, std::string_view type) {
    const auto found = std::ranges::find(messages, type, [](const auto& text) { return TypeOf(text); });
    return found == messages.end() ? std::string_view() : *found;
}

/// Which chains hold a code at the converter's end. The histogram tells it at once; the samples must be searched.
std::vector<bool> OverloadedChains(const std::vector<std::string>& messages) {
    std::vector<bool> chains;
    if (const std::string_view histogram = Find(messages, "Histogram Data"); !histogram.empty()) {
        const Json data = Json::parse(DataOf(histogram), nullptr, false);
        for (const Json& chain : data.is_array() ? data : Json::array()) {
            const auto ends = chain.value("IQMinMax", std::vector<double>());
            chains.push_back(std::ranges::any_of(ends, IsAtEnd));
        }
        return chains;
    }
    const std::string_view samples = Find(messages, "IQ Amplitude Data");
    constexpr std::string_view chainMark = R"({"chain": )";
    for (std::size_t at = samples.find(chainMark); at != std::string_view::npos;) {
        const std::size_t next = samples.find(chainMark, at + 1);
        const std::string_view part = samples.substr(at, next == std::string_view::npos ? next : next - at);
        chains.push_back(HoldsEnd(part));
        at = next;
    }
    return chains;
}

/// The graph of each chain that a limit line is held against: what was highest, else the average, else the sweep.
std::vector<std::vector<double>> HighestGraphs(const std::vector<std::string>& messages) {
    std::vector<std::vector<double>> graphs;
    const std::string_view spectrum = Find(messages, "Spectrum Data");
    if (spectrum.empty()) return graphs;
    const Json chains = Json::parse(DataOf(spectrum), nullptr, false);
    if (!chains.is_array()) return graphs;
    for (const Json& chain : chains) {
        const char* name = chain.contains("maxData")       ? "maxData"
                           : chain.contains("averageData") ? "averageData"
                                                           : "data";
        graphs.push_back(chain.value(name, std::vector<double>()));
    }
    return graphs;
}

/// A member that is a text; empty for anything else.
std::string MemberText(const Json& object, const char* name) {
    if (!object.is_object()) return {};
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

std::optional<double> FiniteNumber(const std::string& text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
    return isNumber ? std::optional(value) : std::nullopt;
}

}  // namespace

void Station::Message(std::string json) {
    m_loop.Post([this, json = std::move(json)]() mutable {
        if (m_running && m_running->answer) m_desense.Hear(json);
        m_received.messages.push_back(std::move(json));
    });
}

void Station::Text(std::string text) {
    m_loop.Post([this, text = std::move(text)]() mutable { m_received.texts.push_back(std::move(text)); });
}

void Station::Error(std::string text) {
    m_loop.Post([this, text = std::move(text)]() mutable { m_received.errors.push_back(std::move(text)); });
}

MessagePtr Station::Number(std::string type, std::string envelope) {
    auto message = std::make_shared<TarnServe::Message>();
    message->type = std::move(type);
    message->seq = ++m_seq;
    message->utc = UtcText(std::chrono::system_clock::now());
    message->envelope = std::move(envelope);
    return message;
}

/// A message of the plug-in as clients get it: always JSON, and without the folder's path.
MessagePtr Station::FromPlugin(std::string envelope) {
    std::string type(TypeOf(envelope));
    return Number(std::move(type), AsJson(m_folder.Hide(std::move(envelope))));
}

void Station::Tell(std::string_view type, const Json& data) {
    const std::string text = data.dump(-1, ' ', false, Json::error_handler_t::replace);
    m_audience.Tell(Number(std::string(type), Envelope(type, text)));
}

void Station::TellState() {
    Tell(HostType::State, State());
}

void Station::TellChannels(bool atOnce) {
    const auto now = Clock::now();
    if (!atOnce && now - m_channelsTold < channelsPeriod) return;
    m_channelsTold = now;
    Tell(HostType::Channels, m_channels.ToJson());
}

void Station::Publish(Received received, const TarnSession::Exchange& exchange) {
    const bool isSweep = !Find(received.messages, "Spectrum Data").empty();
    for (const std::string& envelope : received.messages) {
        if (isSweep && IsOfSweep(TypeOf(envelope))) continue;
        Remember(envelope);
        m_audience.Tell(FromPlugin(envelope));
    }
    for (const std::string& text : received.errors)
        Tell(HostType::Refusal, {{"text", text}});
    if (isSweep) PublishSweep(std::move(received), exchange);
}

void Station::PublishSweep(Received received, const TarnSession::Exchange& exchange) {
    received.overloaded = OverloadedChains(received.messages);
    const std::string trouble = exchange.warnings.empty() ? "" : exchange.warnings.front();
    m_lastVerdicts = Verdicts(received, trouble);
    const Tuning& tuning = m_book.Now();
    auto frame = std::make_shared<Frame>();
    for (std::string& envelope : received.messages)  // megabytes: they aren't copied
        if (IsOfSweep(TypeOf(envelope))) frame->push_back(FromPlugin(std::move(envelope)));
    Json verdicts = Json::array();
    for (const ChainVerdict& verdict : m_lastVerdicts)
        verdicts.push_back({{"chain", verdict.chain},
                            {"power_dbm", NumberOrNull(verdict.power_dbm)},
                            {"limit_dbm", NumberOrNull(verdict.limit_dbm)},
                            {"margin_db", NumberOrNull(verdict.margin_db)},
                            {"verdict", verdict.verdict},
                            {"reason", verdict.reason}});
    Json overloaded = Json::array();
    for (std::size_t k = 0; k < received.overloaded.size() && k < m_lastVerdicts.size(); ++k)
        if (received.overloaded[k]) overloaded.push_back(m_lastVerdicts[k].chain);
    const Json facts = {{"band", tuning.band},
                        {"channel", tuning.channel},
                        {"bandwidth_mhz", std::atoi(tuning.bandwidth.c_str())},
                        {"centre_mhz", tuning.centre_mhz},
                        {"chain", tuning.chain},
                        {"rbw_khz", tuning.rbw_khz},
                        {"maxHold", m_book.IsMaxHold()},
                        {"holdSince", m_book.IsMaxHold() ? m_book.HoldSince() : ""},
                        {"average", m_book.IsAverage()},
                        {"averageCount", m_book.AverageCount()},
                        {"averageTarget", m_book.AverageTarget()},
                        {"sweeps", m_book.Sweeps()},
                        {"sweepsPerSecond", m_book.SweepsPerSecond()},
                        {"overloaded", overloaded},
                        {"trouble", trouble},
                        {"source", m_source},
                        {"verdicts", verdicts}};
    const std::string text = facts.dump(-1, ' ', false, Json::error_handler_t::replace);
    frame->push_back(Number(std::string(HostType::Frame), Envelope(HostType::Frame, text)));
    m_audience.Show(frame);
    if (!m_scan && m_source.empty()) {
        m_channels.Take(tuning, m_lastVerdicts, frame->back()->utc);
        TellChannels(false);
    }
}

std::vector<ChainVerdict> Station::Verdicts(const Received& received, const std::string& doubt) const {
    std::vector<ChainVerdict> verdicts;
    std::vector<std::vector<double>> graphs;
    if (m_judge.NeedsGraph()) graphs = HighestGraphs(received.messages);
    for (const std::string& envelope : received.messages) {
        if (TypeOf(envelope) != "Power Per Chain") continue;
        const Json data = Json::parse(DataOf(envelope), nullptr, false);
        if (!data.is_object()) continue;
        const std::size_t index = verdicts.size();
        const bool isOverloaded = index < received.overloaded.size() && received.overloaded[index];
        const std::string invalid = isOverloaded ? "overloaded" : doubt;
        const auto graph = index < graphs.size() ? graphs[index] : std::vector<double>();
        verdicts.push_back(
            m_judge.Say(m_book.Now(), data.value("chain", ""), FiniteNumber(data.value("power", "")), graph, invalid));
    }
    return verdicts;
}

/// Messages that tell what a new client needs, and those that change the settings behind our back.
void Station::Remember(const std::string& envelope) {
    const std::string type(TypeOf(envelope));
    if (type == "Supported Channels Data" || type == "Supported Chains Data") m_vocabulary[type] = FromPlugin(envelope);
    if (type == "Load All Response") TakeLoadedSettings(Json::parse(DataOf(envelope), nullptr, false));
}

void Station::TakeLoadedSettings(const Json& parameters) {
    if (!parameters.is_array()) return;
    static constexpr std::array bands = {"2.4", "5.2", "6-7"};
    static constexpr std::array chains = {"A", "B", "AB"};
    static constexpr std::array flags = {"false", "true"};
    const auto pick = [](const auto& names, const std::string& text, int first) -> std::string {
        const int index = std::atoi(text.c_str()) - first;
        return index >= 0 && index < static_cast<int>(names.size()) ? names[static_cast<std::size_t>(index)] : "";
    };
    for (const Json& entry : parameters) {
        // the front-end's part of a file goes through the plug-in unread and may hold anything, entries of its own too
        const std::string name = MemberText(entry, "parameter");
        const std::string value = MemberText(entry, "value");
        if (!FiniteNumber(value)) continue;
        if (name == "m_RBW") m_settings.Set("-rbw", value);
        if (name == "m_AverageSweepsVal") m_settings.Set("-channel_average_sweep_val", value);
        if (name == "Average") m_settings.Set("-channel_average", pick(flags, value, 0));
        if (name == "MaxHold") m_settings.Set("-maxhold", pick(flags, value, 0));
        if (name == "m_band") m_settings.Set("-band", pick(bands, value, 0));
        if (name == "m_Bandwidth") m_settings.Set("-bandwidth", value);
        if (name == "m_currChain") m_settings.Set("-chain", pick(chains, value, 1));
        if (name == "m_currChannelNumber") m_settings.Set("-channel", value);
        if (name == "internalLnaGain") m_settings.Set("-internal_gain", value);
        if (name == "isPreLnaResistorConnected") m_settings.Set("-preLNA_resistor", pick(flags, value, 0));
    }
    m_source.clear();
    m_book.TakeLine("", m_settings.Values(), UtcText(std::chrono::system_clock::now()));
    SaveState();
}

Json Station::State() const {
    Json settings = Json::object();
    for (const auto& [key, value] : m_settings.Values())
        settings[key] = value;
    Json limits = nullptr;
    if (!m_judge.Text().empty()) {
        Json line = Json::array();
        for (const auto& [mhz, level] : m_judge.Line())
            line.push_back({mhz, level});
        limits = {{"text", m_judge.Text()}, {"margin_db", m_judge.Margin_db()}, {"line", line}};
    }
    return {{"version", TARN_VERSION},
            {"adapter",
             {{"description", m_adapterText}, {"mac", m_macAddress}, {"air", m_airText}, {"antennas", m_chainMask}}},
            {"settings", settings},
            {"run",
             {{"mode", ModeText(m_mode)},
              {"line", m_running && !m_running->isOwn ? m_running->line : ""},
              {"waiting", m_jobs.size()},
              {"resting", m_mode == Mode::Run && !IsSweeping()}}},
            {"desense", {{"phase", m_desense.PhaseText()}, {"name", m_desense.Name()}}},
            {"trouble", m_trouble},
            {"limits", limits}};
}

Json Station::Channels() const {
    return m_channels.ToJson();
}

std::vector<MessagePtr> Station::Greeting() {
    std::vector<MessagePtr> messages;
    const auto add = [&](std::string_view type, const Json& data) {
        const std::string text = data.dump(-1, ' ', false, Json::error_handler_t::replace);
        messages.push_back(Number(std::string(type), Envelope(type, text)));
    };
    add(HostType::State, State());
    for (const auto& [type, message] : m_vocabulary)
        messages.push_back(message);
    add(HostType::Channels, m_channels.ToJson());
    add(HostType::Desense, m_desense.Progress());
    return messages;
}

void Station::LoadState() {
    std::error_code error;
    if (!std::filesystem::exists(m_folder.PathOf(stateName), error)) return;
    const Json state = Json::parse(m_folder.ReadOwn(stateName), nullptr, false);
    if (!state.is_object()) return;
    const Json settings = state.value("settings", Json::object());
    Settings values;
    for (const auto& [key, value] : settings.items())
        if (value.is_string()) values[key] = value.get<std::string>();
    // the tuning is one line, for its keys depend on each other; a bad value of another key costs only that one
    Settings tuning;
    for (const char* key : {"-band", "-bandwidth", "-channel", "-chain", "-rbw"})
        if (auto node = values.extract(key)) tuning.insert(std::move(node));
    std::vector<Settings> lines = {tuning};
    for (const auto& entry : values)
        lines.push_back({entry});
    for (const Settings& line : lines) {
        const std::string text = SweepBook::LineOf(line);
        const auto placed = m_folder.Place(text);
        if (!text.empty() && placed) m_jobs.push_back({.line = text, .placed = *placed, .isOwn = true});
    }
    if (MemberText(state, "mode") == "hold") m_mode = Mode::Hold;
    m_channels.FromJson(state.value("channels", Json::array()));
    const Json limits = state.value("limits", Json::object());
    const Json margin = limits.is_object() ? limits.value("margin_db", Json(nullptr)) : Json(nullptr);
    const double margin_db = margin.is_number() ? margin.get<double>() : 3.0;
    if (!m_judge.Use(MemberText(limits, "text"), margin_db, m_folder)) m_trouble.clear();
}

/// Soon, so that many changes cost one file.
void Station::SaveState() {
    if (m_isSaving) return;
    m_isSaving = true;
    m_loop.After(saveDelay, [this] {
        m_isSaving = false;
        SaveStateNow();
    });
}

void Station::SaveStateNow() {
    const Json state = {{"settings", State()["settings"]},
                        {"mode", m_mode == Mode::Hold ? "hold" : "run"},
                        {"limits", {{"text", m_judge.Text()}, {"margin_db", m_judge.Margin_db()}}},
                        {"channels", m_channels.ToJson()}};
    const std::string text = state.dump(1, ' ', false, Json::error_handler_t::replace);
    const auto written = OSAL::WriteWholeFile(m_folder.PathOf(stateName), text + "\n");
    if (!written) Tell(HostType::Refusal, {{"text", "the state isn't saved: " + m_folder.Hide(written.Reason())}});
}

}  // namespace TarnServe
