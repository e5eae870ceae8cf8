// Local time, clocks and waits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

namespace OSAL {

struct LocalTime {
    std::tm fields{};
    int milliseconds = 0;
};
LocalTime GetLocalTime();
/// Local time by `strftime`.
int FormatLocalTime(const char* format, char* buffer, std::size_t size);
std::string FormatLocalTime(const char* format);
/// Forms of `TimeStamp`; each stands for one combination of fields.
enum TimeForm : unsigned {
    TimeHms = 1,                         // 14-03-05
    TimeYear = 2,                        // 2023
    TimeMonthDay = 4,                    // 12-11
    TimeDate = 6,                        // 2023-12-11
    TimeDateHms = 7,                     // 2023-12-11_14-03-05
    TimeWeek = 8,                        // week of the year, Monday first
    TimeWeekYear = 10,                   // 50_2023
    TimeMilliseconds = 16,               // 042
    TimeHmsMilliseconds = 17,            // 14-03-05.042
    TimeSecond = 32,                     // 05
    TimeSecondMilliseconds = 48,         // 05.042
    TimeMinute = 64,                     // 03
    TimeMinuteSecondMilliseconds = 112,  // 03-05.042
    TimeMonthDayYear = 128,              // 12-11-2023
};
/// Local time in one of the forms above; any other number gives false and an empty text.
bool TimeStamp(unsigned form, std::string& out);

/// Milliseconds of a clock that never goes back.
std::uint64_t GetTickCount();
/// Counts of the finest clock that never goes back, and how many of them make a second.
std::int64_t QueryPerformanceCounter();
std::int64_t QueryPerformanceFrequency();

/// Milliseconds since construction or the last `Start`.
class Stopwatch {
public:
    Stopwatch() { Start(); }
    void Start() { m_start = QueryPerformanceCounter(); }
    /// -1.0 should the clock have gone back.
    double ElapsedMs() const;

private:
    double m_msPerCount = 1e3 / static_cast<double>(QueryPerformanceFrequency());
    std::int64_t m_start = 0;
};

/// Gives the processor away for at least that long. Publishes nothing.
void SleepMs(std::uint32_t milliseconds);

/// Waits that are published, each as a scope of its own, when a hook is installed.
class Sleep {
public:
    static void Sec(std::uint32_t seconds);
    /// Sleeps all but the last 5 ms and spins through these, so that it ends on time.
    static void MilliSec(std::uint32_t milliseconds);
    /// Spins all the time: for short waits only.
    static void MicroSec(std::uint32_t microseconds);
};

/// A wait that is about to begin.
struct PublishedSleep {
    const char* function;
    const char* argumentNames;  // with a marker before: "'\0', seconds"
    std::uint32_t amount;
    const char* file;  // where the wait stands
    unsigned line;
    const char* signature;
};
/// Told of each published wait: `begin` before it; `end` after it, with what `begin` gave.
struct SleepScopeHook {
    void* (*begin)(const PublishedSleep& sleep);
    void (*end)(void* scope);
};
/// The record must stay alive while it is installed; null detaches.
void SetSleepScopeHook(const SleepScopeHook* hook);

}  // namespace OSAL
