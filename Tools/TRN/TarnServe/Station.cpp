// Lines in, one after the other: the queue, the sweeps between clients' lines, the scan.
#include "Station.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "CmdLine/CmdLine.h"
#include "KeyTable.h"
#include "Record.h"

namespace TarnServe {
namespace {

using Json = nlohmann::json;
using namespace std::chrono_literals;

constexpr std::size_t mostJobs = 64;
/// No page draws more, and a core stays free for it.
constexpr auto sweepPeriod = 33ms;
/// Between two tries of a sweep that fails.
constexpr auto troublePeriod = 1000ms;
/// At the server's end a sweep has this long, and what keeps a test's results; the wait for a load doesn't end in it.
constexpr auto lineGrace = 800ms;

struct ModeName {
    Mode mode;
    std::string_view text;
};
constexpr auto modeNames =
    std::to_array<ModeName>({{Mode::Run, "run"}, {Mode::Hold, "hold"}, {Mode::Single, "single"}, {Mode::Scan, "scan"}});

bool HasRole(const std::string& line, std::initializer_list<TarnKeys::KeyRole> roles) {
    const CmdLine::TokenList tokens = CmdLine::Tokenize(line);
    return std::ranges::any_of(tokens, [&](const std::string& token) {
        const TarnKeys::KeyRow* key = TarnKeys::FindKey(token);
        return key && std::ranges::find(roles, key->role) != roles.end();
    });
}

/// A line with a key that changes settings or captures: it would spoil a scan.
bool Disturbs(const std::string& line) {
    using enum TarnKeys::KeyRole;
    return HasRole(line, {Sets, Acts, Triggers});
}

}  // namespace

std::string_view ModeText(Mode mode) {
    return std::ranges::find(modeNames, mode, &ModeName::mode)->text;
}

std::optional<Mode> ModeOf(std::string_view text) {
    const auto found = std::ranges::find(modeNames, text, &ModeName::text);
    return found == modeNames.end() ? std::nullopt : std::optional(found->mode);
}

Station::Station(DataFolder folder, ILoop& loop, IAudience& audience)
    : m_folder(std::move(folder)), m_loop(loop), m_audience(audience), m_desense(loop, SurroundingsOfTest()) {}

Station::~Station() {
    m_session.reset();
}

OSAL::Outcome<std::unique_ptr<Station>> Station::Open(const StationSetup& setup, ILoop& loop, IAudience& audience) {
    auto folder = DataFolder::Open(setup.dataFolder);
    if (!folder) return folder.Why();
    std::unique_ptr<Station> station(new Station(std::move(*folder), loop, audience));
    TarnSession::Options options = setup.session;
    options.isFrontEnd = true;
    auto session = TarnSession::Session::Open(options, *station);
    if (!session) return session.Why();
    station->m_session = std::move(*session);
    const auto facts = station->m_session->Adapter();
    if (!facts) return facts.Why();
    station->m_macAddress = facts->macAddress;
    station->m_chainMask = facts->chainMask;
    station->m_adapterText = "hardware " + std::to_string(facts->hwType) + ", " + facts->driver;
    station->m_airText = station->m_session->AirText();
    station->QueueStart();
    return station;
}

void Station::QueueStart() {
    // nothing is left to what the plug-in starts with: the page shows what was set. A snapshot saved without a count of
    // sweeps couldn't be loaded again.
    const auto own = [&](const std::string& line) { m_jobs.push_back({.line = line, .placed = line, .isOwn = true}); };
    own("-get_supported_channels");
    own("-get_supported_chains");
    own("-channel_average_sweep_val 25 -maxhold false -histogram true -channel_average false -band 2.4 -bandwidth 20 "
        "-channel 1 -chain A -rbw 39.0625 -power_deembedding false");
    LoadState();
    m_loop.Post([this] { Pump(); });
}

OSAL::Outcome<> Station::RunLine(const std::string& line, TarnSession::LineOptions options, LineDone done) {
    if (line.size() > longestLine)
        return OSAL::Refusal{"the line is longer than " + std::to_string(longestLine) + " characters"};
    auto placed = m_folder.Place(line);
    if (!placed) return placed.Why();
    if (m_scan && Disturbs(line)) return OSAL::Refusal{"a scan is running: stop it first"};
    if (m_desense.IsActive() && Disturbs(line)) return m_desense.MayStart();
    Job job{.line = line, .placed = std::move(*placed), .options = options, .done = std::move(done)};
    return Queue(std::move(job));
}

OSAL::Outcome<> Station::Queue(Job job) {
    if (m_isEnding) return OSAL::Refusal{"the server is ending"};
    if (m_jobs.size() >= mostJobs) return OSAL::Refusal{std::to_string(mostJobs) + " lines wait already"};
    m_jobs.push_back(std::move(job));
    Pump();
    return {};
}

OSAL::Outcome<> Station::SetMode(Mode mode, const ScanOrder& order) {
    if (m_isEnding) return OSAL::Refusal{"the server is ending"};
    if (const auto isFree = m_desense.MayStart(); !isFree) return isFree;
    if (mode == Mode::Scan && !m_scan) {
        const auto supported = m_vocabulary.find("Supported Channels Data");
        std::vector<ChannelName> channels;
        if (supported != m_vocabulary.end())
            channels = ChannelsOf(DataOf(supported->second->envelope), m_book.Now(), order.allBands);
        if (channels.empty()) return OSAL::Refusal{"the adapter has no channel of this band and width"};
        m_modeBehindScan = m_mode == Mode::Run ? Mode::Run : Mode::Hold;
        m_scan.emplace(std::move(channels), order.sweeps, m_settings.Values());
    } else if (mode != Mode::Scan && m_scan) {
        m_modeBehindScan = mode;
        EndScan();
        return {};
    }
    m_mode = mode;
    m_nextSweep = {};
    TellState();
    SaveState();
    Pump();
    return {};
}

void Station::EndScan() {
    const std::string line = m_scan->BackLine();
    m_scan.reset();
    m_mode = m_modeBehindScan;
    if (!line.empty()) m_jobs.push_back({.line = line, .placed = line, .isOwn = true});
    TellChannels(true);
    TellState();
    Pump();
}

bool Station::MaySweep() const {
    if (m_desense.IsActive()) return false;
    if (m_mode == Mode::Single || m_mode == Mode::Scan) return true;
    // nobody looks and nothing is held: the machine is left in peace
    return m_mode == Mode::Run && (m_audience.IsWatching() || m_book.IsMaxHold());
}

Station::Job Station::SweepJob() const {
    const std::string line = m_book.TriggerLine();
    return {.line = line, .placed = line, .isOwn = true, .isSweep = true};
}

std::optional<Station::Job> Station::NextJob() {
    if (!m_jobs.empty()) {
        Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        return job;
    }
    if (m_isEnding || !MaySweep()) return std::nullopt;
    const auto now = Clock::now();
    if (now < m_nextSweep) {
        if (!m_isWaiting) {
            m_isWaiting = true;
            const auto rest = std::chrono::ceil<std::chrono::milliseconds>(m_nextSweep - now);
            m_loop.After(rest, [this] {
                m_isWaiting = false;
                Pump();
            });
        }
        return std::nullopt;
    }
    if (m_scan) {
        if (auto line = m_scan->TuningLine())
            return Job{.line = *line, .placed = *line, .isOwn = true, .isTuning = true};
    }
    m_nextSweep = std::max(now, m_nextSweep + sweepPeriod);  // what came late is caught up once
    return SweepJob();
}

void Station::Pump() {
    if (m_running) return;
    auto job = NextJob();
    if (job) {
        Start(std::move(*job));
    } else if (m_isEnding && m_ended && !m_desense.IsActive()) {
        SaveStateNow();  // with what the last line set
        std::exchange(m_ended, {})();
    }
}

void Station::Start(Job job) {
    m_running = std::move(job);
    ++m_started;
    m_received = {};
    const auto posted = m_session->Post(m_running->placed, m_running->options, [this](TarnSession::Exchange exchange) {
        m_loop.Post([this, exchange = std::move(exchange)] { Finish(exchange); });
    });
    if (posted) return;
    // the session's queue holds this one line at most, so only a session that ended refuses: what waits waits in vain
    m_trouble = posted.Reason();
    m_jobs.push_front(*std::exchange(m_running, std::nullopt));
    Refuse(m_trouble);
    m_nextSweep = Clock::now() + troublePeriod;
    TellState();
}

/// Those who wait for a line are told that it doesn't run.
void Station::Refuse(const std::string& reason) {
    for (const Job& job : std::exchange(m_jobs, {}))
        if (job.done)
            job.done(OSAL::Refusal{reason});
        else if (job.answer)
            job.answer({.ok = false, .interrupted = m_hasAbandoned, .error = reason, .messages = {}});
}

void Station::Finish(const TarnSession::Exchange& exchange) {
    if (m_hasAbandoned) return;  // too late
    const Job job = std::move(*m_running);
    m_running.reset();
    const bool isFine = exchange.exitCode == 0;
    const std::string before = State().dump();
    const bool isTesting = m_desense.IsActive();  // its lines leave the settings, which come back behind it
    if (isFine && !job.answer) {
        TakeSettings(job);
    } else if (!isFine && !job.isSweep && !job.isRestoring && !isTesting) {
        RestoreTuning();
    }
    if (job.isSweep) {
        m_trouble = isFine ? m_session->RadioTrouble().value_or("") : ErrorSentence(exchange);
        if (!isFine) m_nextSweep = Clock::now() + troublePeriod;
        if (m_mode == Mode::Single) m_mode = Mode::Hold;
    }
    Received received = std::exchange(m_received, {});
    const std::string record = job.done ? RecordOf(exchange, received) : "";
    auto answer = job.answer ? AnswerOf(exchange, received) : TarnMeasure::DesenseAnswer();
    Publish(std::move(received), exchange);
    // a key may answer that all is well though its file isn't written; a failed line's error tells it by itself
    if (isFine && !job.isSweep)
        for (const std::string& warning : exchange.warnings)
            Tell(HostType::Refusal, {{"text", m_folder.Hide(warning)}});
    if (!job.isOwn || !isFine) {
        Tell(HostType::Line, {{"line", job.line},
                              {"origin", job.isOwn ? "server" : "client"},
                              {"exitCode", exchange.exitCode},
                              {"output", m_folder.Hide(exchange.output)},
                              {"error", isFine ? "" : m_folder.Hide(ErrorSentence(exchange))}});
    }
    OSAL::Outcome<> taken;
    if (!job.capture.empty()) taken = TakeCapture(job, exchange);
    if (job.done) job.done(taken ? OSAL::Outcome<std::string>(record) : taken.Why());
    if (job.answer) job.answer(std::move(answer));
    if (m_scan) NextScanStep(job, isFine, m_lastVerdicts);
    if (isFine && !job.isSweep && !job.isTuning && !isTesting) CompleteTuning();
    if (State().dump() != before) TellState();
    Pump();
}

void Station::NextScanStep(const Job& job, bool isFine, const std::vector<ChainVerdict>& verdicts) {
    if (!job.isSweep && !job.isTuning) return;
    const Tuning tuning = m_book.Now();
    if (!isFine) {
        m_scan->Skip();
    } else if (job.isSweep) {
        const auto mean = m_scan->TakeSweep(verdicts);
        if (mean) m_channels.Take(tuning, *mean, UtcText(std::chrono::system_clock::now()));
        if (mean) TellChannels(false);
    }
    Tell(HostType::Progress, {{"what", m_scan->What()}, {"done", m_scan->Done()}, {"total", m_scan->Total()}});
    if (m_scan->IsOver()) EndScan();
}

void Station::TakeSettings(const Job& job) {
    if (HasRole(job.line, {TarnKeys::KeyRole::Triggers})) {
        m_book.TakeSweep(Clock::now());
        m_source.clear();
    }
    if (job.isSweep) return;
    m_settings.Take(job.line);
    // what -reset_config and -set_mcc set back
    const Settings defaults = {{"-band", "2.4"}, {"-bandwidth", "20"}, {"-channel", "1"}, {"-chain", "A"}};
    if (!m_settings.Values().contains("-band"))
        for (const auto& [key, value] : defaults)
            m_settings.Set(key, value);
    m_book.TakeLine(job.line, m_settings.Values(), UtcText(std::chrono::system_clock::now()));
    SaveState();
}

/// A line that failed may have set some of its keys before: the known tuning is set again, so that page and adapter
/// agree.
void Station::RestoreTuning() {
    Settings tuning;
    for (const char* key : {"-band", "-bandwidth", "-channel", "-chain", "-rbw"})
        if (const auto entry = m_settings.Values().find(key); entry != m_settings.Values().end()) tuning.insert(*entry);
    const std::string line = SweepBook::LineOf(tuning);
    if (!line.empty()) m_jobs.push_front({.line = line, .placed = line, .isOwn = true, .isRestoring = true});
}

/// A band or a width alone leaves the channel open: the first channel there is taken, and everybody sees the line.
void Station::CompleteTuning() {
    const auto supported = m_vocabulary.find("Supported Channels Data");
    const Settings& settings = m_settings.Values();
    if (settings.contains("-channel") || m_scan || !m_jobs.empty() || supported == m_vocabulary.end()) return;
    Tuning tuning = m_book.Now();
    if (tuning.bandwidth.empty()) tuning.bandwidth = "20";
    const auto channels = ChannelsOf(DataOf(supported->second->envelope), tuning, false);
    if (channels.empty()) return;
    const std::string line = "-bandwidth " + tuning.bandwidth + " -channel " + std::to_string(channels.front().channel);
    m_jobs.push_back({.line = line, .placed = line});
}

OSAL::Outcome<> Station::SetLimit(const std::string& text, double margin_db) {
    const auto used = m_judge.Use(text, margin_db, m_folder);
    if (!used) return used;
    TellState();
    SaveState();
    return {};
}

void Station::ClearChannels() {
    m_channels.Clear();
    TellChannels(true);
    SaveState();
}

void Station::AudienceChanged() {
    Pump();
}

void Station::End(std::function<void()> done) {
    m_isEnding = true;
    m_ended = std::move(done);
    // the last lines of a desense test end the load and keep what was measured
    const auto isOfTest = [](const Job& job) { return job.answer != nullptr; };
    std::deque<Job> last;
    std::ranges::copy_if(m_jobs, std::back_inserter(last), isOfTest);
    std::erase_if(m_jobs, isOfTest);
    Refuse("the server is ending");
    m_jobs = std::move(last);
    if (m_desense.IsActive()) static_cast<void>(m_desense.Stop());
    m_loop.After(lineGrace, [this, started = m_started] {
        if (m_running && m_started == started) Abandon();
    });
    Pump();
}

void Station::Abandon() {
    m_session->Abandon();
    m_hasAbandoned = true;
    m_jobs.push_front(*std::exchange(m_running, std::nullopt));
    Refuse("the server is ending");
    Pump();
}

std::string Station::RecordOf(const TarnSession::Exchange& exchange, const Received& received) const {
    TarnSession::KeepingSink sink;
    sink.messages = received.messages;
    sink.printed = received.texts;
    sink.printedErrors = received.errors;
    return m_folder.Hide(TarnSession::RecordText(exchange, sink));
}

}  // namespace TarnServe
