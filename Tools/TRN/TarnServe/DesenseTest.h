// A burn-in desense test that the server drives: a thread of its own goes through channels, chains and iterations, and
// hands each line to the station, so that no page is needed for it to go on.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Desense.h"
#include "DesenseConfig.h"
#include "DesenseReport.h"
#include "Loop.h"

namespace TarnServe {

struct DesenseOrder {
    std::string name;  ///< of the test and of its folder
    DesenseConfig config;
    std::string limitText;  ///< as the client said it; empty: the usual limits
    std::optional<TarnMeasure::Limits> limits;
    double margin_db = 1;
    bool idleBaseline = false;
};

enum class DesensePhase { None, Running, Pausing, Paused, Stopping, Ended };

/// What a test needs. Thread: the loop's.
struct DesenseSurroundings {
    /// Runs a line behind those that wait, and calls `done` once, on the loop's thread.
    std::function<void(const std::string& line, std::function<void(TarnMeasure::DesenseAnswer)> done)> run;
    std::function<void(std::string_view type, const nlohmann::json& data)> tell;
    /// A text without the data folder's own path.
    std::function<std::string(const std::string& text)> hide;
    /// The phase changed.
    std::function<void()> changed;
};

/// One test after the other; the last one stays to be looked at. Thread: the loop's, but for the destructor, which
/// comes behind the loop's end.
class DesenseTest {
public:
    DesenseTest(ILoop& loop, DesenseSurroundings surroundings);
    /// Gives a test up that still runs.
    ~DesenseTest();
    DesenseTest(const DesenseTest&) = delete;
    DesenseTest& operator=(const DesenseTest&) = delete;

    /// @param folder  gets the test's files; has its configuration
    void Start(DesenseOrder order, const std::string& folder, TarnMeasure::DesenseOrigin origin);
    // Refused when the test isn't in a phase that allows it.
    OSAL::Outcome<> MayStart() const;
    OSAL::Outcome<> Pause();
    OSAL::Outcome<> Resume();
    OSAL::Outcome<> Stop();
    /// From its start until its results are kept.
    bool IsActive() const;
    /// A message of the plug-in that came while a line of the test runs.
    void Hear(const std::string& envelope);

    std::string PhaseText() const;
    const std::string& Name() const { return m_order.name; }
    /// Phase and progress: what the stream tells.
    nlohmann::json Progress() const;
    /// The same with order, channels, those left out and messages.
    nlohmann::json Whole() const;
    /// Average and maximum of every in-band bin of a channel that was measured.
    std::optional<nlohmann::json> Graph(const std::string& band, int channel) const;

private:
    using Clock = std::chrono::steady_clock;
    /// What the thread is to do next.
    enum class Wish { GoOn, Rest, Stop };
    struct Row {
        nlohmann::json json;
        TarnMeasure::DesenseChannel channel;
    };

    // The test's own thread.
    void Work(TarnMeasure::DesenseRequest request, const TarnMeasure::DesenseOrigin& origin);
    TarnMeasure::DesenseIo Io();
    TarnMeasure::DesenseAnswer Run(const std::string& line);
    bool Rest();
    Wish WishNow();

    /// @return whether the thread rests
    bool SetWish(Wish wish);
    void SetPhase(DesensePhase phase);
    void TakeRest();
    void TakeStep(const TarnMeasure::DesenseStep& step);
    void TakeMessage(const std::string& text);
    void TakeChannel(const TarnMeasure::DesenseChannel& channel);
    void TakeEnd(const TarnMeasure::DesenseResult& result, const std::vector<std::string>& failures);
    void TellSoon();
    void TellNow();
    std::optional<double> LeftSeconds() const;

    ILoop& m_loop;
    DesenseSurroundings m_surroundings;

    DesenseOrder m_order;
    DesensePhase m_phase = DesensePhase::None;
    std::string m_what, m_startedUtc, m_endedUtc, m_verdict, m_trouble;
    bool m_isInterrupted = false;
    TarnMeasure::DesenseStep m_step;
    std::vector<Row> m_rows;
    nlohmann::json m_leftOut = nlohmann::json::array();  ///< channels that weren't tried, known at the end
    std::deque<std::string> m_messages;
    std::string m_swept;           ///< what the last sweep's message was about
    std::uint64_t m_revision = 0;  ///< grows with each row and message
    Clock::time_point m_told{};
    bool m_isTelling = false;  ///< a timer will tell

    std::thread m_thread;
    std::mutex m_mutex;  ///< of the members below
    std::condition_variable m_changed;
    Wish m_wish = Wish::GoOn;
    bool m_isResting = false;
    bool m_isGivenUp = false;
    std::optional<TarnMeasure::DesenseAnswer> m_answer;
};

}  // namespace TarnServe
