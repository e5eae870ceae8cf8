// When a workload program has to end.
#pragma once

#include <cstdint>

namespace TarnWorkload {

/// Ends with the first signal that asks for it, with the program that started this one, and behind the limit. The host
/// names itself in the environment, so that one that was killed before anybody could look for it is missed all the
/// same. One at a time; made before the work begins. Thread: from any.
class Duty {
public:
    /// @param limit_s  0 for none
    explicit Duty(unsigned limit_s);
    /// Looks at all three.
    bool IsOver() const;
    /// Waits until it is over, or at most so long.
    void Wait(std::uint32_t most_ms) const;

private:
    std::uint32_t m_parent;
    std::uint32_t m_host = 0;  ///< 0: none is named
    std::uint64_t m_end_ms;    ///< by the tick count; 0: none
};

}  // namespace TarnWorkload
