// Local time and clocks by POSIX calls.
#include <time.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "OSAL/OSAL.h"

namespace OSAL {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

struct LocalTime {
    tm fields{};
    int milliseconds = 0;
};

LocalTime Now() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    LocalTime local;
    localtime_r(&now.tv_sec, &local.fields);
    local.milliseconds = static_cast<int>(now.tv_nsec / 1000000);
    return local;
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
    const auto now = Now();
    if (strftime(buffer, size, format, &now.fields) > 0) return Success;
    buffer[0] = '\0';
    return Failure;
}

std::string FormatLocalTime(const char* format) {
    return format ? ByStrftime(format, Now().fields) : std::string();
}

bool TimeStamp(unsigned form, std::string& out) {
    const auto [t, ms] = Now();
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

std::int64_t QueryPerformanceCounter() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * nanosecondsPerSecond + now.tv_nsec;
}

std::int64_t QueryPerformanceFrequency() {
    return nanosecondsPerSecond;
}

std::uint64_t GetTickCount() {
    return static_cast<std::uint64_t>(QueryPerformanceCounter() / 1000000);
}

void SleepMs(std::uint32_t milliseconds) {
    timespec left{};
    left.tv_sec = milliseconds / 1000;
    left.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000;
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
    }
}

}  // namespace OSAL
