// Local time and clocks by POSIX calls.
#include <time.h>

#include <cerrno>

#include "OSAL/Time.h"

namespace OSAL {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

}  // namespace

LocalTime GetLocalTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    LocalTime local;
    localtime_r(&now.tv_sec, &local.fields);
    local.milliseconds = static_cast<int>(now.tv_nsec / 1000000);
    return local;
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
