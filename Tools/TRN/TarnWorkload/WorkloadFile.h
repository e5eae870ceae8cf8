// The text that says what load to make.
#pragma once

#include <string>
#include <string_view>

#include "OSAL/Outcome.h"

namespace TarnWorkload {

/// Who makes the load.
enum class Engine {
    Auto,  ///< stress-ng where it is installed, else this program
    StressNg,
    BuiltIn,
};

struct Plan {
    unsigned cpu = 0;             ///< workers that calculate; 0: one for each processor
    unsigned memory = 0;          ///< workers that stream through memory
    unsigned memory_mib = 64;     ///< that each of these streams through
    unsigned load_percent = 100;  ///< share of its time that a worker works
    unsigned memtest_mib = 0;     ///< that the companion MemTest64 tests; 0: it isn't started
    unsigned limit_s = 0;         ///< the load ends by itself; 0: it doesn't
    Engine engine = Engine::Auto;
};

/// Lines "KEY VALUE", "#" begins a comment; a key that is left out keeps its default. A refusal begins with the number
/// of the line at fault.
OSAL::Outcome<Plan> ParsePlan(std::string_view text);

/// The plan of a file of 64 KiB at most. When there is no such file: of the one of the same name beside this program.
/// Links are refused.
OSAL::Outcome<Plan> ReadPlan(const std::string& path);

/// One line for a person.
std::string Describe(const Plan& plan);

}  // namespace TarnWorkload
