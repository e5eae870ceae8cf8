// The measurement behind the server: it owns the plug-in's session, runs lines for clients one after the other, and
// sweeps between them, so that a page only watches.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "ChannelTable.h"
#include "DataFolder.h"
#include "DesenseArchive.h"
#include "DesenseTest.h"
#include "Judge.h"
#include "Loop.h"
#include "Messages.h"
#include "OSAL/Outcome.h"
#include "Scan.h"
#include "Session.h"
#include "SettingsMemory.h"
#include "SweepBook.h"

namespace TarnServe {

/// Who hears the messages. Thread: the loop's.
class IAudience {
public:
    virtual ~IAudience() = default;
    virtual void Tell(const MessagePtr& message) = 0;
    virtual void Show(const FramePtr& frame) = 0;
    /// Somebody looks at sweeps.
    virtual bool IsWatching() const = 0;
    virtual std::size_t Clients() const = 0;
};

enum class Mode { Run, Hold, Single, Scan };

struct StationSetup {
    TarnSession::Options session;
    std::filesystem::path dataFolder;
};

/// Thread: the loop's, but for Open, which comes before the loop runs, and the destructor, which comes behind it.
class Station final : private TarnSession::ISink {
public:
    static OSAL::Outcome<std::unique_ptr<Station>> Open(const StationSetup& setup, ILoop& loop, IAudience& audience);
    /// Waits for the running line.
    ~Station() override;

    /// @param record  the exchange as one JSON object; refused when the line didn't run after all
    using LineDone = std::function<void(const OSAL::Outcome<std::string>& record)>;
    /// Runs a client's line behind those that wait. Refused when it names a path, is too long, or too many wait.
    OSAL::Outcome<> RunLine(const std::string& line, TarnSession::LineOptions options, LineDone done);
    /// Analyses a capture of the data folder as its name says, and holds: the results are told as a sweep. Refused when
    /// there is no such file, or its name tells no tuning.
    OSAL::Outcome<> Analyse(const std::string& name, LineDone done);
    OSAL::Outcome<> SetMode(Mode mode, const ScanOrder& order);
    /// @param text  a level in dBm, or a file of the data folder; empty: no limit
    OSAL::Outcome<> SetLimit(const std::string& text, double margin_db);
    void ClearChannels();
    /// Refused while a test or a scan runs, and when the data folder has something of the test's name.
    OSAL::Outcome<> StartDesense(DesenseOrder order);
    DesenseTest& Desense() { return m_desense; }
    DesenseArchive Archive() const { return DesenseArchive(m_folder); }

    /// What a new client has to know: state, channels, vocabulary.
    std::vector<MessagePtr> Greeting();
    nlohmann::json State() const;
    nlohmann::json Channels() const;
    /// Number of the newest message.
    std::uint64_t LastNumber() const { return m_seq; }
    const DataFolder& Folder() const { return m_folder; }
    /// Sweeps come by themselves.
    bool IsSweeping() const { return m_mode != Mode::Hold && MaySweep(); }
    /// Somebody came or went.
    void AudienceChanged();
    /// Saves the state and drops what waits; `done` is called once no line runs. One that goes on for long is given up.
    void End(std::function<void()> done);
    /// A line runs on in the plug-in: the process has to end by std::_Exit().
    bool HasAbandoned() const { return m_hasAbandoned; }

    static constexpr std::size_t longestLine = 16384;

private:
    struct Job {
        std::string line;    ///< as the client said it
        std::string placed;  ///< with files in the data folder
        TarnSession::LineOptions options{};
        LineDone done{};
        bool isOwn = false;  ///< the station's: not told to clients when it succeeds
        bool isSweep = false;
        bool isTuning = false;                                     ///< of a scan
        bool isRestoring = false;                                  ///< sets the known tuning again
        std::string capture{};                                     ///< that the line analyses
        std::function<void(TarnMeasure::DesenseAnswer)> answer{};  ///< of a desense test, which waits for it
    };
    struct Received {
        std::vector<std::string> messages, texts, errors;
        std::vector<bool> overloaded{};  ///< a chain each, of a sweep
    };

    Station(DataFolder folder, ILoop& loop, IAudience& audience);
    void Message(std::string json) override;
    void Text(std::string text) override;
    void Error(std::string text) override;

    void QueueStart();
    OSAL::Outcome<> Queue(Job job);
    void Pump();
    void Start(Job job);
    void Refuse(const std::string& reason);
    void Finish(const TarnSession::Exchange& exchange);
    void Abandon();
    void TakeSettings(const Job& job);
    OSAL::Outcome<> TakeCapture(const Job& job, const TarnSession::Exchange& exchange);
    void RestoreTuning();
    void CompleteTuning();
    DesenseSurroundings SurroundingsOfTest();
    void DesenseChanged();
    TarnMeasure::DesenseAnswer AnswerOf(const TarnSession::Exchange& exchange, const Received& received) const;
    void Publish(Received received, const TarnSession::Exchange& exchange);
    void PublishSweep(Received received, const TarnSession::Exchange& exchange);
    void Remember(const std::string& envelope);
    void TakeLoadedSettings(const nlohmann::json& parameters);
    std::vector<ChainVerdict> Verdicts(const Received& received, const std::string& doubt) const;
    std::optional<Job> NextJob();
    Job SweepJob() const;
    void NextScanStep(const Job& job, bool isFine, const std::vector<ChainVerdict>& verdicts);
    void EndScan();
    bool MaySweep() const;
    MessagePtr Number(std::string type, std::string envelope);
    MessagePtr FromPlugin(std::string envelope);
    void Tell(std::string_view type, const nlohmann::json& data);
    void TellState();
    void TellChannels(bool atOnce);
    void LoadState();
    void SaveState();
    void SaveStateNow();
    std::string RecordOf(const TarnSession::Exchange& exchange, const Received& received) const;

    DataFolder m_folder;
    ILoop& m_loop;
    IAudience& m_audience;
    std::unique_ptr<TarnSession::Session> m_session;
    std::string m_adapterText, m_macAddress, m_airText;
    std::uint32_t m_chainMask = 3;

    TarnSession::SettingsMemory m_settings;
    SweepBook m_book;
    ChannelTable m_channels;
    Judge m_judge;
    Mode m_mode = Mode::Run;
    std::optional<Scan> m_scan;
    Mode m_modeBehindScan = Mode::Hold;
    std::vector<ChainVerdict> m_lastVerdicts;
    std::string m_source;  ///< capture that the results are of; empty: of the adapter
    DesenseTest m_desense;

    std::deque<Job> m_jobs;
    std::optional<Job> m_running;
    Received m_received;
    std::map<std::string, MessagePtr> m_vocabulary;  ///< newest message of each type that a new client needs
    std::uint64_t m_seq = 0;
    std::string m_trouble;
    Clock::time_point m_nextSweep{};
    Clock::time_point m_channelsTold{};
    bool m_isWaiting = false;     ///< a timer will pump
    bool m_isSaving = false;      ///< a timer will save
    std::uint64_t m_started = 0;  ///< lines so far
    bool m_isEnding = false;
    bool m_hasAbandoned = false;
    std::function<void()> m_ended;
};

/// Text of the API for a mode.
std::string_view ModeText(Mode mode);
std::optional<Mode> ModeOf(std::string_view text);

}  // namespace TarnServe
