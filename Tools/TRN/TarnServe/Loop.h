// The one thread that the server works on.
#pragma once

#include <chrono>
#include <functional>

namespace TarnServe {

class ILoop {
public:
    virtual ~ILoop() = default;
    /// Runs `work` on the loop's thread, behind what was posted before. Thread: any.
    virtual void Post(std::function<void()> work) = 0;
    /// Runs `work` on the loop's thread in a while. Thread: the loop's.
    virtual void After(std::chrono::milliseconds delay, std::function<void()> work) = 0;
};

}  // namespace TarnServe
