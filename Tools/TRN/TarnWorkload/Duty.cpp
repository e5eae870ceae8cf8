#include "Duty.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "OSAL/Process.h"
#include "OSAL/Time.h"

namespace TarnWorkload {

namespace {

volatile std::sig_atomic_t isAsked = 0;

void Ask(int) {
    isAsked = 1;
}

/// How often it is looked: a load outlives its host no longer.
constexpr std::uint32_t Look_ms = 100;

}  // namespace

Duty::Duty(unsigned limit_s)
    : m_parent(OSAL::GetParentProcessId()),
      m_end_ms(limit_s > 0 ? OSAL::GetTickCount() + std::uint64_t{limit_s} * 1000 : 0) {
    if (const char* named = std::getenv("TARN_HOST_PROCESS"))
        m_host = static_cast<std::uint32_t>(std::strtoul(named, nullptr, 10));
    for (const int signal : {SIGTERM, SIGINT})
        std::signal(signal, Ask);
}

bool Duty::IsOver() const {
    return isAsked != 0 || OSAL::GetParentProcessId() != m_parent || (m_host != 0 && !OSAL::IsProcessThere(m_host)) ||
           (m_end_ms != 0 && OSAL::GetTickCount() >= m_end_ms);
}

void Duty::Wait(std::uint32_t most_ms) const {
    const OSAL::Stopwatch watch;
    while (!IsOver()) {
        const double left = most_ms - watch.ElapsedMs();
        if (left <= 0) return;
        OSAL::SleepMs(static_cast<std::uint32_t>(std::clamp<double>(left, 1, Look_ms)));
    }
}

}  // namespace TarnWorkload
