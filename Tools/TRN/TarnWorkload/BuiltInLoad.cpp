#include "BuiltInLoad.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "OSAL/Time.h"

namespace TarnWorkload {

namespace {

/// A worker's turn: it works for its share of this time and rests for the remainder.
constexpr unsigned Turn_ms = 20;

/// Calls `work`, a matter of less than a millisecond, turn after turn until `isEnding`.
template <typename Work>
void Repeat(const std::atomic<bool>& isEnding, unsigned load_percent, Work work) {
    const double busy_ms = Turn_ms * load_percent / 100.0;
    while (!isEnding) {
        const OSAL::Stopwatch turn;
        while (!isEnding && turn.ElapsedMs() < busy_ms)
            work();
        if (load_percent < 100) OSAL::SleepMs(static_cast<std::uint32_t>(Turn_ms - std::min<double>(busy_ms, Turn_ms)));
    }
}

}  // namespace

BuiltInLoad::BuiltInLoad(const Plan& plan) {
    const unsigned workers = plan.cpu > 0 ? plan.cpu : std::max(1u, std::thread::hardware_concurrency());
    m_memory.resize(plan.memory, std::vector<std::uint64_t>(std::size_t{plan.memory_mib} << 17));
    try {
        for (unsigned k = 0; k < workers; ++k)
            m_threads.emplace_back([this, k, load = plan.load_percent] { Calculate(load, k + 1); });
        for (auto& words : m_memory)
            m_threads.emplace_back([this, &words, load = plan.load_percent] { Stream(load, words); });
    } catch (...) {
        m_isEnding = true;
        for (std::thread& thread : m_threads)
            thread.join();
        throw;
    }
}

BuiltInLoad::~BuiltInLoad() {
    m_isEnding = true;
    for (std::thread& thread : m_threads)
        thread.join();
}

void BuiltInLoad::Calculate(unsigned load_percent, std::uint64_t seed) {
    constexpr int Lanes = 64, Rounds = 200;
    std::array<double, Lanes> values{};
    for (int k = 0; k < Lanes; ++k)
        values[static_cast<std::size_t>(k)] = static_cast<double>(seed) + k;
    Repeat(m_isEnding, load_percent, [&] {
        for (int round = 0; round < Rounds; ++round)
            for (double& value : values)
                value = std::sqrt(value * 1.000001 + 1.0) * 3.0;
        m_sum.fetch_add(static_cast<std::uint64_t>(values[0]), std::memory_order_relaxed);
    });
}

void BuiltInLoad::Stream(unsigned load_percent, std::vector<std::uint64_t>& words) {
    constexpr std::size_t Piece = 1 << 14;  // words: 128 KiB
    std::size_t at = 0;
    Repeat(m_isEnding, load_percent, [&] {
        const std::size_t end = std::min(at + Piece, words.size());
        std::uint64_t sum = 0;
        for (std::size_t k = at; k < end; ++k) {
            sum += words[k];
            words[k] = sum ^ k;
        }
        m_sum.fetch_add(sum, std::memory_order_relaxed);
        at = end < words.size() ? end : 0;
    });
}

std::size_t TestMemory(std::vector<std::uint64_t>& words, std::uint64_t pattern) {
    for (std::size_t k = 0; k < words.size(); ++k)
        words[k] = pattern ^ k;
    std::atomic_signal_fence(std::memory_order_seq_cst);  // what was written is in memory before it is read back
    std::size_t wrong = 0;
    const volatile std::uint64_t* const memory = words.data();
    for (std::size_t k = 0; k < words.size(); ++k)
        wrong += memory[k] != (pattern ^ k);
    return wrong;
}

}  // namespace TarnWorkload
