#include "DesenseTest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "Messages.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;
using namespace std::chrono_literals;
using namespace TarnMeasure;

/// Between two tellings of the progress.
constexpr auto tellPeriod = 200ms;
constexpr std::size_t mostMessages = 500;

constexpr std::array<const char*, 6> phaseTexts = {"none", "running", "pausing", "paused", "stopping", "ended"};

Json NumberOrNull(double value) {
    return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json Levels(const std::vector<double>& bins) {
    Json levels = Json::array();
    for (const double bin : bins)
        levels.push_back(NumberOrNull(bin));
    return levels;
}

Json RowJson(const DesenseChannel& channel) {
    Json row = Json::parse(DesenseChannelJson(channel));
    if (!channel.IsJudged()) row["verdict"] = "";
    return row;
}

/// "Sampling channel '36' (5180 MHz), chain A" of a sweep's own message; empty for another one.
std::string SweptIn(const std::string& message) {
    const std::size_t at = std::min(message.find("Sampling channel"), message.size());
    return message.substr(at, message.find(", iteration", at) - at);
}

}  // namespace

DesenseTest::DesenseTest(ILoop& loop, DesenseSurroundings surroundings)
    : m_loop(loop), m_surroundings(std::move(surroundings)) {}

DesenseTest::~DesenseTest() {
    {
        const std::lock_guard lock(m_mutex);
        m_isGivenUp = true;
        m_wish = Wish::Stop;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

// Orders.

OSAL::Outcome<> DesenseTest::MayStart() const {
    if (IsActive())
        return OSAL::Refusal{"the desense test '" + m_order.name + "' is " + PhaseText() + ": stop it first"};
    return {};
}

void DesenseTest::Start(DesenseOrder order, const std::string& folder, DesenseOrigin origin) {
    DesenseRequest request{.config = folder + "/test.cfg",
                           .folder = folder,
                           .idleBaseline = order.idleBaseline,
                           .limits = order.limits,
                           .margin_db = order.margin_db,
                           .limitText = order.limitText};
    m_order = std::move(order);
    m_what = "starting";
    m_startedUtc = UtcText(std::chrono::system_clock::now());
    m_endedUtc = m_verdict = m_trouble = "";
    m_isInterrupted = false;
    m_step = {};
    m_rows.clear();
    m_leftOut = Json::array();
    m_messages.clear();
    m_swept.clear();
    ++m_revision;
    SetWish(Wish::GoOn);
    m_thread = std::thread([this, request = std::move(request), origin = std::move(origin)]() mutable {
        Work(std::move(request), origin);
    });
    SetPhase(DesensePhase::Running);
}

OSAL::Outcome<> DesenseTest::Pause() {
    if (m_phase == DesensePhase::Paused || m_phase == DesensePhase::Pausing)
        return OSAL::Refusal{"the desense test is paused already"};
    if (m_phase != DesensePhase::Running) return OSAL::Refusal{"no desense test is running that could pause"};
    if (SetWish(Wish::Rest))
        TakeRest();
    else
        SetPhase(DesensePhase::Pausing);
    return {};
}

OSAL::Outcome<> DesenseTest::Resume() {
    if (m_phase != DesensePhase::Paused && m_phase != DesensePhase::Pausing)
        return OSAL::Refusal{"no desense test is paused that could go on"};
    SetWish(Wish::GoOn);
    m_what = "going on";
    SetPhase(DesensePhase::Running);
    return {};
}

OSAL::Outcome<> DesenseTest::Stop() {
    if (!IsActive()) return OSAL::Refusal{"no desense test is running that could stop"};
    SetWish(Wish::Stop);
    m_what = "stopping";
    SetPhase(DesensePhase::Stopping);
    return {};
}

bool DesenseTest::IsActive() const {
    return m_phase != DesensePhase::None && m_phase != DesensePhase::Ended;
}

bool DesenseTest::SetWish(Wish wish) {
    bool isResting = false;
    {
        const std::lock_guard lock(m_mutex);
        m_wish = wish;
        isResting = m_isResting;
    }
    m_changed.notify_all();
    return isResting;
}

// The test's own thread.

void DesenseTest::Work(DesenseRequest request, const DesenseOrigin& origin) {
    DesenseResult result;
    std::vector<std::string> failures;
    try {
        result = RunDesense(request, Io());
        failures = WriteDesenseReports(result, origin, request.folder);
    } catch (const std::exception& error) {
        failures.emplace_back(error.what());
    }
    m_loop.Post([this, result = std::move(result), failures = std::move(failures)] { TakeEnd(result, failures); });
}

DesenseIo DesenseTest::Io() {
    DesenseIo io;
    io.run = [this](const std::string& line) { return Run(line); };
    io.message = [this](const std::string& text) { m_loop.Post([this, text] { TakeMessage(text); }); };
    io.progress = [this](const DesenseStep& step) {
        m_loop.Post([this, step] { TakeStep(step); });
        return WishNow() != Wish::Stop;
    };
    io.isLoaded = [watch = std::make_shared<WorkloadWatch>()] { return watch->IsRunning(); };
    io.measured = [this](const DesenseChannel& channel) { m_loop.Post([this, channel] { TakeChannel(channel); }); };
    io.wantsRest = [this] { return WishNow() == Wish::Rest; };
    io.rest = [this] { return Rest(); };
    return io;
}

DesenseTest::Wish DesenseTest::WishNow() {
    const std::lock_guard lock(m_mutex);
    return m_wish;
}

DesenseAnswer DesenseTest::Run(const std::string& line) {
    m_loop.Post([this, line] {
        const bool resumes = line.starts_with("-resume");
        if (resumes || line.ends_with("-start_vesper_test")) {
            // the first of two passes goes without load
            const bool isIdle = m_order.idleBaseline && (2 * m_step.done < m_step.total || m_step.total == 0);
            m_what = m_order.config.LoadsMachine() && !isIdle ? "waiting for the load to come up" : "starting";
            TellNow();
        }
        m_surroundings.run(line, [this](DesenseAnswer answer) {
            {
                const std::lock_guard lock(m_mutex);
                m_answer = std::move(answer);
            }
            m_changed.notify_all();
        });
    });
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_answer || m_isGivenUp; });
    if (m_answer) return *std::exchange(m_answer, std::nullopt);
    DesenseAnswer lost;
    lost.interrupted = true;
    return lost;
}

bool DesenseTest::Rest() {
    std::unique_lock lock(m_mutex);
    m_isResting = true;
    m_loop.Post([this] {
        if (m_phase == DesensePhase::Pausing) TakeRest();  // else somebody was quicker
    });
    m_changed.wait(lock, [this] { return m_wish != Wish::Rest || m_isGivenUp; });
    m_isResting = false;
    return m_wish == Wish::GoOn && !m_isGivenUp;
}

// What the thread tells.

void DesenseTest::SetPhase(DesensePhase phase) {
    m_phase = phase;
    TellNow();
    m_surroundings.changed();
}

void DesenseTest::TakeRest() {
    m_what = "paused, the load is ended";
    SetPhase(DesensePhase::Paused);
}

void DesenseTest::TakeStep(const DesenseStep& step) {
    m_step = step;
    m_what = step.what;
    TellSoon();
}

void DesenseTest::Hear(const std::string& envelope) {
    if (TypeOf(envelope) != "Add Vesper Test Message Response") return;
    const auto said = DesenseSaid(envelope);
    if (!said) return;
    const std::string swept = SweptIn(*said);
    // the first sweep of a channel says what the messages behind it are about; the progress tells the others
    if (swept.empty() || swept != std::exchange(m_swept, swept)) TakeMessage(*said);
}

void DesenseTest::TakeMessage(const std::string& text) {
    m_messages.push_back(m_surroundings.hide(text));
    if (m_messages.size() > mostMessages) m_messages.pop_front();
    ++m_revision;
    TellSoon();
}

void DesenseTest::TakeChannel(const DesenseChannel& channel) {
    const auto known = std::ranges::find_if(m_rows, [&](const Row& row) {
        return row.channel.channel == channel.channel && row.channel.band == channel.band;
    });
    Row row{RowJson(channel), channel};
    if (known == m_rows.end())
        m_rows.push_back(std::move(row));
    else
        *known = std::move(row);
    ++m_revision;
    TellSoon();
}

void DesenseTest::TakeEnd(const DesenseResult& result, const std::vector<std::string>& failures) {
    m_thread.join();
    m_rows.clear();
    for (const DesenseChannel& channel : result.channels)
        m_rows.push_back({RowJson(channel), channel});
    for (const DesenseLeftOut& one : result.leftOut)
        m_leftOut.push_back({{"band", one.band}, {"channel", one.channel}, {"reason", one.reason}});
    m_verdict = VerdictText(result.Gravest());
    m_isInterrupted = result.interrupted;
    m_trouble = result.trouble;
    for (const std::string& failure : failures)
        m_trouble += (m_trouble.empty() ? "" : "; ") + failure;
    m_trouble = m_surroundings.hide(m_trouble);
    m_what = m_isInterrupted ? "stopped; what was measured is kept" : "done";
    m_endedUtc = UtcText(std::chrono::system_clock::now());
    ++m_revision;
    SetPhase(DesensePhase::Ended);
}

void DesenseTest::TellSoon() {
    const auto now = Clock::now();
    if (now - m_told >= tellPeriod) return TellNow();
    if (std::exchange(m_isTelling, true)) return;
    m_loop.After(tellPeriod, [this] {
        m_isTelling = false;
        TellSoon();
    });
}

void DesenseTest::TellNow() {
    m_told = Clock::now();
    m_surroundings.tell(HostType::Desense, Progress());
}

// Readouts.

std::string DesenseTest::PhaseText() const {
    return phaseTexts[static_cast<std::size_t>(m_phase)];
}

/// By the time that the sweeps took so far.
std::optional<double> DesenseTest::LeftSeconds() const {
    if (!IsActive() || m_step.done == 0) return std::nullopt;
    const auto done = static_cast<double>(m_step.done);
    return m_step.sweeping_s / done * (static_cast<double>(m_step.total) - done);
}

Json DesenseTest::Progress() const {
    const auto left = LeftSeconds();
    return {{"phase", PhaseText()},
            {"name", m_order.name},
            {"what", m_what},
            {"done", m_step.done},
            {"total", m_step.total},
            {"left_s", left ? NumberOrNull(*left) : Json(nullptr)},
            {"startedUtc", m_startedUtc},
            {"endedUtc", m_endedUtc},
            {"verdict", m_verdict},
            {"interrupted", m_isInterrupted},
            {"trouble", m_trouble},
            {"revision", m_revision}};
}

Json DesenseTest::Whole() const {
    Json whole = Progress();
    whole["order"] = nullptr;
    if (m_phase != DesensePhase::None)
        whole["order"] = {{"config", m_order.config.ToJson()},
                          {"limit", m_order.limitText},
                          {"margin_db", m_order.margin_db},
                          {"idleBaseline", m_order.idleBaseline}};
    whole["channels"] = Json::array();
    for (const Row& row : m_rows)
        whole["channels"].push_back(row.json);
    whole["leftOut"] = m_leftOut;
    whole["messages"] = m_messages;
    return whole;
}

std::optional<Json> DesenseTest::Graph(const std::string& band, int channel) const {
    const auto row = std::ranges::find_if(
        m_rows, [&](const Row& one) { return one.channel.channel == channel && one.channel.band == band; });
    if (row == m_rows.end()) return std::nullopt;
    Json levels = Json::array();
    for (const DesenseLevel& level : row->channel.levels)
        levels.push_back(
            {{"chain", level.chain}, {"average", Levels(level.average)}, {"maximum", Levels(level.maximum)}});
    return Json{{"band", band},
                {"channel", channel},
                {"centre_mhz", row->channel.centre_mhz},
                {"bandwidth_mhz", m_order.config.Width_mhz()},
                {"levels", levels}};
}

}  // namespace TarnServe
