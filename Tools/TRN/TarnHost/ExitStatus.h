// How the program ends.
#pragma once

namespace TarnHost {

enum ExitStatus : int {
    Success = 0,
    Failed = 1,
    WrongUsage = 2,
    NoAdapter = 3,      ///< the adapter as described can't be opened
    LimitExceeded = 4,  ///< a measured level is above its limit
    HungUp = 129,       ///< as a shell shows an end by a terminal that went away
    Interrupted = 130,  ///< as a shell shows an end by Ctrl-C
    Terminated = 143,
    ReaderGone = 141,  ///< as a shell shows an end by a closed pipe
};

}  // namespace TarnHost
