// The program "bit": loads the machine as its workload file says, until it is told to end.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "WorkloadFile.h"

namespace TarnWorkload {

/// What the program is called with.
struct BitOptions {
    std::string file;    ///< -C FILE
    bool runs = false;   ///< -R; without it the file is read and the plan told
    bool timed = false;  ///< -T: ends tell how long the load ran
    bool help = false;
};
OSAL::Outcome<BitOptions> ReadOptions(const std::vector<std::string>& arguments);

/// The arguments of stress-ng for a plan.
std::string StressNgArguments(const Plan& plan);

/// @return 0; 1 when the load can't be made or ended before its time; 2 for a wrong use
int RunBit(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

/// The companion: tests memory over and over until it is told to end. @param arguments  -M MIB
int RunMemTest(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace TarnWorkload
