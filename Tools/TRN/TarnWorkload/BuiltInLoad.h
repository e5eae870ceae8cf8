// Load made by threads of this process.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "WorkloadFile.h"

namespace TarnWorkload {

/// Works from construction to destruction.
class BuiltInLoad {
public:
    /// Memory is taken before a thread starts. @throws std::bad_alloc
    explicit BuiltInLoad(const Plan& plan);
    ~BuiltInLoad();
    BuiltInLoad(const BuiltInLoad&) = delete;
    BuiltInLoad& operator=(const BuiltInLoad&) = delete;

private:
    void Calculate(unsigned load_percent, std::uint64_t seed);
    void Stream(unsigned load_percent, std::vector<std::uint64_t>& words);

    std::atomic<bool> m_isEnding{false};
    std::atomic<std::uint64_t> m_sum{0};  ///< keeps the compiler from leaving the work out
    std::vector<std::vector<std::uint64_t>> m_memory;
    std::vector<std::thread> m_threads;
};

/// Writes a pattern over `words` and reads it back. @return words that read otherwise
std::size_t TestMemory(std::vector<std::uint64_t>& words, std::uint64_t pattern);

}  // namespace TarnWorkload
