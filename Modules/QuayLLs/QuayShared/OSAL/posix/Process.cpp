// Programs by /proc, posix_spawn and signals.
#include "OSAL/Process.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

#include "OSAL/Paths.h"
#include "OSAL/Threads.h"
#include "OSAL/Time.h"
#include "OSAL/posix/Descriptor.h"

namespace OSAL {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t askedMs = 5000, endedMs = 60000, stepMs = 10;

std::string FirstOf(const std::string& path, char end) {
    std::string text;
    std::ifstream file(path);
    std::getline(file, text, end);
    return text;
}

struct Status {
    char state = 0;  // 'Z': it has ended, and its parent hasn't asked yet
    std::uint64_t startTime = 0;
};

Status StatusOf(std::uint32_t process) {
    const std::string text = FirstOf("/proc/" + std::to_string(process) + "/stat", '\n');
    std::istringstream fields(text.substr(std::min(text.size(), text.rfind(')') + 1)));  // the name may hold blanks
    Status status;
    std::string skipped;
    fields >> status.state;
    for (int k = 4; k < 22; ++k)
        fields >> skipped;
    fields >> status.startTime;
    return fields ? status : Status{};
}

bool IsThere(const ProcessInformation& information) {
    const Status now = StatusOf(information.processId);
    return now.state != 0 && now.state != 'Z' && now.startTime == information.startTime;
}

bool HasName(const std::string& folder, const std::string& name) {
    std::error_code error;
    const auto is = [&](std::string found) {
        if (const auto gone = found.find(" (deleted)"); gone != std::string::npos) found.resize(gone);
        return found == name || found == name + ".exe";
    };
    // A script runs in its interpreter: its own name stands in the command, cut to 15 characters.
    const std::string command = FirstOf(folder + "/comm", '\n');
    return is(fs::read_symlink(folder + "/exe", error).filename().string()) || is(command) ||
           (command.size() == 15 && name.size() > 15 && name.starts_with(command) &&
            is(FileNameOf(FirstOf(folder + "/cmdline", '\0'))));
}

/// Waits until it is gone, and takes its status when it is our child, so that nothing of it stays behind.
bool HasEnded(const ProcessInformation& information, std::uint32_t limitMs) {
    const Stopwatch watch;
    for (;;) {
        waitpid(static_cast<pid_t>(information.processId), nullptr, WNOHANG);
        if (!IsThere(information)) return true;
        if (watch.ElapsedMs() >= limitMs) return false;
        SleepMs(stepMs);
    }
}

bool Terminate(const ProcessInformation& information) {
    if (information.processId == 0) return false;
    const auto process = static_cast<pid_t>(information.processId);
    if (HasEnded(information, 0)) return true;
    if (kill(process, SIGTERM) == 0 && HasEnded(information, askedMs)) return true;
    if (kill(process, SIGKILL) != 0 && errno != ESRCH) return false;
    return HasEnded(information, endedMs - askedMs);
}

/// Arguments as the system wants them; valid as long as the texts are.
std::vector<char*> PointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers(texts.size() + 1);  // a null at the end
    std::transform(texts.begin(), texts.end(), pointers.begin(), [](std::string& text) { return text.data(); });
    return pointers;
}

/// What the system is told about a program to start.
class Spawning {
public:
    Spawning() {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawnattr_init(&m_attributes);
        sigset_t none, broken;
        sigemptyset(&none);
        sigemptyset(&broken);
        sigaddset(&broken, SIGPIPE);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &broken);
    }
    ~Spawning() {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    Spawning(const Spawning&) = delete;
    Spawning& operator=(const Spawning&) = delete;

    void In(const std::string& folder) { posix_spawn_file_actions_addchdir_np(&m_actions, folder.c_str()); }
    void Nowhere(int stream) { posix_spawn_file_actions_addopen(&m_actions, stream, "/dev/null", O_RDWR, 0); }
    void To(FileHandle file, int stream) {
        posix_spawn_file_actions_adddup2(&m_actions, static_cast<int>(file), stream);
    }
    void With(const std::vector<std::string>& environment) { m_environment = environment; }
    /// 0 or the error.
    int Start(std::vector<std::string> commandLine, bool ownSession, pid_t& process) {
        const int session = ownSession ? POSIX_SPAWN_SETSID : 0;
        posix_spawnattr_setflags(&m_attributes,
                                 static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | session));
        const auto arguments = PointersTo(commandLine);
        auto variables = PointersTo(m_environment);
        variables.pop_back();
        for (char** variable = environ; *variable; ++variable)
            variables.push_back(*variable);
        variables.push_back(nullptr);
        return posix_spawn(&process, arguments[0], &m_actions, &m_attributes, arguments.data(), variables.data());
    }

private:
    std::vector<std::string> m_environment;
    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

/// Starts a program in the caller's console that gets SIGTERM when this thread ends. 0 or the error.
int StartBound(const std::string& folder, std::vector<std::string> commandLine, pid_t& process) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return errno;
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const auto arguments = PointersTo(commandLine);
    const pid_t parent = getpid();
    process = fork();
    if (process < 0) return errno;
    if (process == 0) {  // only calls that are safe between fork and exec
        signal(SIGPIPE, SIG_DFL);
        if (prctl(PR_SET_PDEATHSIG, SIGTERM) == 0 && getppid() == parent && chdir(folder.c_str()) == 0)
            execv(arguments[0], arguments.data());
        const int error = errno;
        [[maybe_unused]] const auto told = write(writing.Get(), &error, sizeof error);
        _exit(127);
    }
    writing.Close();
    int error = 0;
    ssize_t got;
    do {
        got = read(reading.Get(), &error, sizeof error);
    } while (got < 0 && errno == EINTR);
    if (got <= 0) return 0;  // closed by exec
    waitpid(process, nullptr, 0);
    return error != 0 ? error : ECHILD;
}

int StatusOfChild(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0)
        if (errno != EINTR) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Gives up every right to gain rights; only calls that are safe between fork and exec.
bool DropRights() {
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    for (unsigned long right = 0; prctl(PR_CAPBSET_READ, right, 0, 0, 0) >= 0; ++right)
        if (prctl(PR_CAPBSET_DROP, right, 0, 0, 0) != 0 && errno != EPERM) return false;
    prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0);
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

}  // namespace

std::vector<ProcessInformation> FindProcesses(const std::string& name) {
    std::vector<ProcessInformation> found;
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
        const std::string number = entry->path().filename().string();
        std::uint32_t process = 0;
        if (std::from_chars(number.data(), number.data() + number.size(), process).ec != std::errc()) continue;
        if (!HasName(entry->path().string(), name)) continue;
        const Status status = StatusOf(process);
        if (status.state != 0 && status.state != 'Z') found.push_back({process, status.startTime});
    }
    return found;
}

bool IsProcessRunning(const std::string& name, bool twice) {
    return FindProcesses(name).size() >= (twice || name == "TLMQ" ? 2 : 1);
}

bool IsPortOpen(std::uint16_t port) {
    for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6", "/proc/net/udp", "/proc/net/udp6"}) {
        std::ifstream lines(table);
        std::string line, number, ends[2];
        std::getline(lines, line);  // the heading
        while (std::getline(lines, line)) {
            std::istringstream(line) >> number >> ends[0] >> ends[1];
            for (const std::string& end : ends)  // ADDRESS:PORT, both hexadecimal
                if (const auto colon = end.rfind(':'); colon != std::string::npos)
                    if (std::strtoul(end.c_str() + colon + 1, nullptr, 16) == port) return true;
        }
    }
    return false;
}

std::vector<std::string> SplitArguments(const std::string& arguments) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false, begun = false;
    const auto end = [&] {
        if (begun) words.push_back(std::move(word));
        word.clear();
        begun = false;
    };
    for (const char c : arguments) {
        if (c == ' ' && !quoted) {
            end();
            continue;
        }
        begun = true;
        if (c == '"')
            quoted = !quoted;
        else
            word += c;
    }
    end();
    return words;
}

bool StartProcess(const std::string& directory, const std::string& name, const std::string& arguments,
                  ProcessInformation& information, const ProcessOptions& options) {
    information = {};
    const std::string folder = NativePath(directory);
    Spawning spawning;
    spawning.In(folder);
    spawning.With(options.environment);
    if (!options.callersConsole)
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            spawning.Nowhere(stream);
    if (options.output != InvalidFile)
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
            spawning.To(options.output, stream);
    std::error_code ignored;
    std::vector<std::string> commandLine{fs::absolute(fs::path(folder) / name, ignored).string()};
    for (const std::string& argument : SplitArguments(arguments))
        commandLine.push_back(argument);
    pid_t process = 0;
    const int error = options.endsWithCaller ? StartBound(folder, std::move(commandLine), process)
                                             : spawning.Start(std::move(commandLine), !options.callersConsole, process);
    if (error != 0) {
        errno = error;
        return false;
    }
    information.processId = static_cast<std::uint32_t>(process);
    information.startTime = StatusOf(information.processId).startTime;
    return true;
}

bool TerminateHandle(const ProcessInformation& information) {
    return Terminate(information);
}

bool TerminateByName(const std::string& name) {
    bool all = true;
    for (const ProcessInformation& process : FindProcesses(name))
        if (process.processId != static_cast<std::uint32_t>(getpid())) all = Terminate(process) && all;
    return all;
}

bool IsRunning(const ProcessInformation& information) {
    return information.processId != 0 && !HasEnded(information, 0);
}

std::uint32_t GetParentProcessId() {
    return static_cast<std::uint32_t>(getppid());
}

bool IsProcessThere(std::uint32_t processId) {
    const Status now = StatusOf(processId);
    return now.state != 0 && now.state != 'Z';
}

std::uint32_t GetCurrentThreadId() {
    return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

std::uint32_t GetCurrentProcessId() {
    return static_cast<std::uint32_t>(getpid());
}

bool IsDebuggerPresent() {
    constexpr std::string_view key = "TracerPid:\t";
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key)) return line.substr(key.size()) != "0";
    return false;
}

std::uint32_t GetLastError() {
    return static_cast<std::uint32_t>(errno);
}

int RunProgram(const std::vector<std::string>& commandLine) {
    Spawning spawning;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        spawning.Nowhere(stream);
    pid_t process = 0;
    if (commandLine.empty() || spawning.Start(commandLine, false, process) != 0) return -1;
    const int status = StatusOfChild(process);
    return status > 127 ? -1 : status;
}

Outcome<RestrictedResult> RunRestricted(const std::string& command) {
    const auto failed = [] { return Refusal{"can't run the command: " + std::generic_category().message(errno)}; };
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return failed();
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const pid_t process = fork();
    if (process < 0) return failed();
    if (process == 0) {
        constexpr int noRights = 126;
        if (!DropRights() || dup2(writing.Get(), STDOUT_FILENO) < 0) _exit(noRights);
        execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    writing.Close();
    RestrictedResult result;
    std::string buffer(4096, '\0');
    for (;;) {
        const auto count = read(reading.Get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        result.output.append(buffer, 0, static_cast<std::size_t>(count));
    }
    result.status = StatusOfChild(process);
    return result;
}

}  // namespace OSAL
