// The outside stress tool that loads the machine while a test runs.
#pragma once

#include <functional>
#include <string>

#include "OSAL/Process.h"

/// Starts and ends the tool. It is looked for in the folder that `TARN_WORKLOAD_DIR` names by an absolute path, then in
/// the workload folder of Tarn's shared files; never in the current folder or on a search path. What it prints goes to
/// "tarn-workload.log" in the folder for temporary files.
/// Thread: one at a time.
class Workload {
public:
    /// Gets each message of a test as it comes.
    using Messages = std::function<void(const std::string&)>;

    Workload() = default;
    /// Ends what was started and not stopped.
    ~Workload() { End(); }
    Workload(const Workload&) = delete;
    Workload& operator=(const Workload&) = delete;

    /// Ends a tool of that name that runs already, and starts it anew with the file of that name beside the host
    /// program.
    /// @throws Common::Exception "Failed to terminate ${1}.", "Failed to start BurnInTest process. Error code: ${1}"
    void Start(const std::string& bitcfgFile, const Messages& message);
    /// Ends the tool and the companion that it leaves behind.
    /// @throws Common::Exception "Failed to terminate BurnInTest.", "Failed to terminate ${1}."
    void Stop(const Messages& message);
    /// Ends the tool if Start started it and Stop didn't end it. Says nothing.
    void End() noexcept;

    OSAL::ProcessInformation m_burnInProcess;  ///< of the started tool
    std::string m_burnInDirectory;             ///< set at each start
    std::string m_burnInName = "bit";
    std::string m_burnInArguments;  ///< set at each start
    std::string m_memTestName = "MemTest64";

private:
    void EndByName(const std::string& name, const Messages& message);
};
