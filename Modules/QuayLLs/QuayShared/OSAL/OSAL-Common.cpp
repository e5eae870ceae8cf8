// What is the same on every system: hooks, the layer's exceptions, paths as texts, waits.
#include <atomic>
#include <string>

#include "OSAL/OSAL.h"

namespace OSAL {

namespace {

std::atomic<DebugOutputHook> debugOutputHook{nullptr};
std::atomic<const SleepScopeHook*> sleepScopeHook{nullptr};

constexpr const char* separators = "/\\";

/// One published wait.
class SleepScope {
public:
    explicit SleepScope(const char* function) : m_hook(sleepScopeHook.load()) {
        if (m_hook) m_scope = m_hook->begin(function);
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

}  // namespace

DebugOutputHook SetDebugOutputHook(DebugOutputHook hook) {
    return debugOutputHook.exchange(hook);
}

void OutputDebugString(const char* text) {
    if (const auto hook = debugOutputHook.load(); hook && text) hook(text);
}

exception::exception(const char* message) : m_message(message ? message : ""), m_known(message != nullptr) {
    OutputDebugString(message);
}

std::string DirectoryOf(const std::string& path) {
    const auto last = path.find_last_of(separators);
    return last == std::string::npos ? std::string() : path.substr(0, last + 1);
}

std::string FileNameOf(const std::string& path) {
    const auto last = path.find_last_of(separators);
    return last == std::string::npos ? path : path.substr(last + 1);
}

std::string StemOf(const std::string& name) {
    return name.substr(0, name.rfind('.'));
}

void NormalizePath(std::string& path) {
    std::string normal;
    for (const char c : path) {
        const char separator = c == '/' ? '\\' : c;
        if (separator != '\\' || normal.empty() || normal.back() != '\\') normal += separator;
    }
    path = std::move(normal);
}

double Stopwatch::ElapsedMs() const {
    const auto counts = QueryPerformanceCounter() - m_start;
    return counts < 0 ? -1.0 : static_cast<double>(counts) * m_msPerCount;
}

void SetSleepScopeHook(const SleepScopeHook* hook) {
    sleepScopeHook = hook;
}

void Sleep::Sec(std::uint32_t seconds) {
    const SleepScope scope("OSAL::Sleep::Sec");
    const auto end = QueryPerformanceCounter() + CountsOf(seconds, 1);
    constexpr std::uint32_t chunk = 1000;  // so that no number of seconds overflows
    for (std::uint32_t i = 0; i < seconds && QueryPerformanceCounter() < end; ++i)
        SleepMs(chunk);
}

void Sleep::MilliSec(std::uint32_t milliseconds) {
    const SleepScope scope("OSAL::Sleep::MilliSec");
    constexpr std::uint32_t spun = 5;
    const auto end = QueryPerformanceCounter() + CountsOf(milliseconds, 1000);
    if (milliseconds > spun) SleepMs(milliseconds - spun);
    SpinUntil(end);
}

void Sleep::MicroSec(std::uint32_t microseconds) {
    const SleepScope scope("OSAL::Sleep::MicroSec");
    SpinUntil(QueryPerformanceCounter() + CountsOf(microseconds, 1000000));
}

}  // namespace OSAL
