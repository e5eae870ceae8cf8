#include "Vesper/Workload.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "OSAL/Files.h"
#include "OSAL/Paths.h"
#include "Streams/Trace.h"

using Streams::ThrowLogged;
using Streams::TraceInfo;

namespace {

namespace fs = std::filesystem;

constexpr const char* FolderVariable = "TARN_WORKLOAD_DIR";

/// The folder that holds the tool, else Tarn's own, where the start then fails.
std::string FindFolder(const std::string& name) {
    std::string programs;
    OSAL::GetModuleDirectory(programs);
    const fs::path own = (fs::path(programs) / ".." / "share" / "tarn" / "workload").lexically_normal();
    std::error_code ignored;
    if (const char* named = std::getenv(FolderVariable); named && fs::path(named).is_absolute())
        if (fs::exists(fs::path(named) / name, ignored)) return named;
    return own.string();
}

/// Where the tool's output goes.
class OutputLog {
public:
    OutputLog() {
        std::error_code error;
        const fs::path folder = fs::temp_directory_path(error);
        if (!error)
            m_file = OSAL::OpenFile((folder / "tarn-workload.log").string(), OSAL::ReadWrite | OSAL::NoLink, false);
    }
    ~OutputLog() { OSAL::CloseFile(m_file); }
    OutputLog(const OutputLog&) = delete;
    OutputLog& operator=(const OutputLog&) = delete;
    OSAL::FileHandle Handle() const { return m_file; }

private:
    OSAL::FileHandle m_file = OSAL::InvalidFile;
};

}  // namespace

void Workload::EndByName(const std::string& name, const Messages& message) {
    if (OSAL::TerminateByName(name)) return;
    const std::string text = Common::Format("Failed to terminate ${1}.") % name;
    message(text);
    ThrowLogged("Workload::EndByName", text);
}

void Workload::Start(const std::string& bitcfgFile, const Messages& message) {
    constexpr const char* traceFunctionName = "TarnWifiFlows::StartBurnInTest";
    if (OSAL::IsProcessRunning(m_burnInName, false)) {
        TRACE(TraceInfo, "BurnInTest is already running");
        message("BurnInTest is already running.");
        message("Terminating BurnInTest...");
        EndByName(m_burnInName, message);
    }
    TRACE(TraceInfo, "Attempting to start BurnInTest...");
    m_burnInProcess = {};
    m_burnInDirectory = FindFolder(m_burnInName);
    std::string programs;
    OSAL::GetModuleDirectory(programs);
    m_burnInArguments = "-T -R -C \"" + programs + bitcfgFile + '"';
    const OutputLog log;
    OSAL::ProcessOptions options;
    options.output = log.Handle();
    options.environment = {"TARN_HOST_PROCESS=" + std::to_string(OSAL::GetCurrentProcessId())};
    if (!OSAL::StartProcess(m_burnInDirectory, m_burnInName, m_burnInArguments, m_burnInProcess, options)) {
        const std::string text =
            Common::Format("Failed to start BurnInTest process. Error code: ${1}") % OSAL::GetLastError();
        message(text);
        ThrowLogged(traceFunctionName, text);
    }
    TRACE(TraceInfo, "BurnInTest was started successfully");
    message("BurnInTest process started.");
}

void Workload::Stop(const Messages& message) {
    constexpr const char* traceFunctionName = "TarnWifiFlows::StopBurnInTest";
    if (OSAL::IsProcessRunning(m_burnInName, false)) {
        message("Terminating BurnIntest...");
        if (!OSAL::TerminateHandle(m_burnInProcess)) ThrowLogged(traceFunctionName, "Failed to terminate BurnInTest.");
    }
    End();  // takes the status of one that ended by itself
    EndByName(m_memTestName, message);
    TRACE(TraceInfo, "BurnInTest was terminated successfuly");
    message("BurnInTest was terminated successfuly.");
}

void Workload::End() noexcept {
    if (m_burnInProcess.processId == 0) return;
    try {
        OSAL::TerminateHandle(std::exchange(m_burnInProcess, {}));
    } catch (const std::exception&) {  // no memory to look for it: the tool ends with its parent
    }
}
