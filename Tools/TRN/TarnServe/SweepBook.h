// What the server knows of the settings and of the sweeps made with them: tuning, holds, averaging, rate.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

namespace TarnServe {

using Clock = std::chrono::steady_clock;
/// Last value of each key that sets one, by the key's own spelling.
using Settings = std::map<std::string, std::string>;

struct Tuning {
    std::string band;       ///< text of the key; empty: not known
    std::string bandwidth;  ///< MHz
    int channel = 0;        ///< 0: not known
    std::string chain;
    double centre_mhz = 0;
    double rbw_khz = 0;
};

/// Thread: one at a time.
class SweepBook {
public:
    /// A line that succeeded, with the settings behind it.
    void TakeLine(const std::string& line, const Settings& settings, const std::string& utc);
    /// A sweep was made at this time.
    void TakeSweep(Clock::time_point now);

    const Tuning& Now() const { return m_tuning; }
    bool IsMaxHold() const { return m_maxHold; }
    bool IsAverage() const { return m_average; }
    int AverageTarget() const { return m_target; }
    /// Sweeps in the average, at most the target: from then on it runs along.
    int AverageCount() const { return m_count; }
    std::uint64_t Sweeps() const { return m_sweeps; }
    double SweepsPerSecond() const { return m_rate; }
    const std::string& HoldSince() const { return m_holdSince; }

    /// The line of one sweep: with averaging on, it tells the engine how many sweeps its average holds.
    std::string TriggerLine() const;
    /// Keys with their values that make these settings, the tuning first.
    static std::string LineOf(const Settings& settings);

private:
    Tuning m_tuning;
    bool m_maxHold = false;
    bool m_average = false;
    int m_target = 25;
    int m_count = 0;
    std::uint64_t m_sweeps = 0;
    double m_rate = 0;
    Clock::time_point m_last{};
    std::string m_holdSince;
};

}  // namespace TarnServe
