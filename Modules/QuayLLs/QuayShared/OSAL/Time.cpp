#include "OSAL/Time.h"

#include <array>
#include <atomic>
#include <cstdio>

#include "OSAL/Errors.h"

namespace OSAL {

namespace {

std::atomic<const SleepScopeHook*> sleepScopeHook{nullptr};

/// One published wait.
class SleepScope {
public:
    SleepScope(const char* function, const char* argumentNames, std::uint32_t amount, const char* signature,
               unsigned line = __builtin_LINE())
        : m_hook(sleepScopeHook.load()) {
        if (m_hook) m_scope = m_hook->begin({function, argumentNames, amount, __FILE__, line, signature});
    }
    ~SleepScope() {
        if (m_hook) m_hook->end(m_scope);
    }
    SleepScope(const SleepScope&) = delete;
    SleepScope& operator=(const SleepScope&) = delete;

private:
    const SleepScopeHook* m_hook;
    void* m_scope = nullptr;
};

void SpinUntil(std::int64_t end) {
    while (QueryPerformanceCounter() < end) {
    }
}

std::int64_t CountsOf(std::int64_t amount, std::int64_t unitsPerSecond) {
    return amount * (QueryPerformanceFrequency() / unitsPerSecond);
}

template <typename... Values>
std::string Printed(const char* format, Values... values) {
    std::array<char, 80> buffer{};
    std::snprintf(buffer.data(), buffer.size(), format, values...);
    return buffer.data();
}

std::string ByStrftime(const char* format, const tm& fields) {
    std::array<char, 256> buffer{};
    const auto length = strftime(buffer.data(), buffer.size(), format, &fields);
    return std::string(buffer.data(), length);
}

}  // namespace

int FormatLocalTime(const char* format, char* buffer, std::size_t size) {
    if (!format || !buffer || size == 0) return Failure;
    const auto now = GetLocalTime();
    if (strftime(buffer, size, format, &now.fields) > 0) return Success;
    buffer[0] = '\0';
    return Failure;
}

std::string FormatLocalTime(const char* format) {
    return format ? ByStrftime(format, GetLocalTime().fields) : std::string();
}

bool TimeStamp(unsigned form, std::string& out) {
    const auto [t, ms] = GetLocalTime();
    const int year = t.tm_year + 1900, month = t.tm_mon + 1;
    switch (form) {
        case TimeHms:
            out = Printed("%02d-%02d-%02d", t.tm_hour, t.tm_min, t.tm_sec);
            return true;
        case TimeYear:
            out = Printed("%04d", year);
            return true;
        case TimeMonthDay:
            out = Printed("%02d-%02d", month, t.tm_mday);
            return true;
        case TimeDate:
            out = Printed("%04d-%02d-%02d", year, month, t.tm_mday);
            return true;
        case TimeDateHms:
            out = Printed("%04d-%02d-%02d_%02d-%02d-%02d", year, month, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
            return true;
        case TimeWeek:
            out = ByStrftime("%W", t);
            return true;
        case TimeWeekYear:
            out = ByStrftime("%W_%Y", t);
            return true;
        case TimeMilliseconds:
            out = Printed("%03d", ms);
            return true;
        case TimeHmsMilliseconds:
            out = Printed("%02d-%02d-%02d.%03d", t.tm_hour, t.tm_min, t.tm_sec, ms);
            return true;
        case TimeSecond:
            out = Printed("%02d", t.tm_sec);
            return true;
        case TimeSecondMilliseconds:
            out = Printed("%02d.%03d", t.tm_sec, ms);
            return true;
        case TimeMinute:
            out = Printed("%02d", t.tm_min);
            return true;
        case TimeMinuteSecondMilliseconds:
            out = Printed("%02d-%02d.%03d", t.tm_min, t.tm_sec, ms);
            return true;
        case TimeMonthDayYear:
            out = Printed("%02d-%02d-%04d", month, t.tm_mday, year);
            return true;
        default:
            out.clear();
            return false;
    }
}

double Stopwatch::ElapsedMs() const {
    const auto counts = QueryPerformanceCounter() - m_start;
    return counts < 0 ? -1.0 : static_cast<double>(counts) * m_msPerCount;
}

void SetSleepScopeHook(const SleepScopeHook* hook) {
    sleepScopeHook = hook;
}

void Sleep::Sec(std::uint32_t seconds) {
    const SleepScope scope("OSAL::Sleep::Sec", "'\\0', seconds", seconds, __PRETTY_FUNCTION__);
    const auto end = QueryPerformanceCounter() + CountsOf(seconds, 1);
    constexpr std::uint32_t chunk = 1000;  // so that no number of seconds overflows
    for (std::uint32_t i = 0; i < seconds && QueryPerformanceCounter() < end; ++i)
        SleepMs(chunk);
}

void Sleep::MilliSec(std::uint32_t milliseconds) {
    const SleepScope scope("OSAL::Sleep::MilliSec", "'\\0', milliseconds", milliseconds, __PRETTY_FUNCTION__);
    constexpr std::uint32_t spun = 5;
    const auto end = QueryPerformanceCounter() + CountsOf(milliseconds, 1000);
    if (milliseconds > spun) SleepMs(milliseconds - spun);
    SpinUntil(end);
}

void Sleep::MicroSec(std::uint32_t microseconds) {
    const SleepScope scope("OSAL::Sleep::MicroSec", "'\\0', microseconds", microseconds, __PRETTY_FUNCTION__);
    SpinUntil(QueryPerformanceCounter() + CountsOf(microseconds, 1000000));
}

}  // namespace OSAL
