// Runs the built program and keeps what it said.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "Support/TempFolder.h"

extern char** environ;

struct ProgramRun {
    int status = -1;  ///< as a shell shows it: 128 and the signal when one ended the program
    std::string out;
    std::string err;
};

inline bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class Program {
public:
    explicit Program(std::vector<std::string> arguments) : m_arguments(std::move(arguments)) {}

    Program& Input(const std::string& text) {
        std::ofstream(m_folder.Path() / "in") << text;
        return *this;
    }
    Program& InputFrom(int descriptor) {
        m_input = descriptor;
        return *this;
    }
    /// Standard output goes there instead of into the result.
    Program& OutputTo(int descriptor) {
        m_output = descriptor;
        return *this;
    }
    Program& With(const std::string& variable) {
        m_environment.push_back(variable);
        return *this;
    }
    /// All three streams are a terminal, at which somebody types that once the shell's prompt is there.
    Program& OnTerminal(const std::string& typed = "") {
        m_typed = typed;
        m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        ::grantpt(m_master);
        ::unlockpt(m_master);
        m_environment.push_back("TERM=dumb");
        return *this;
    }
    /// Sends the signal once `isReady` answers true.
    Program& Signal(int number, std::function<bool()> isReady) {
        m_signal = number;
        m_isReady = std::move(isReady);
        return *this;
    }

    ProgramRun Run() {
        if (m_master >= 0) return RunOnTerminal();
        const auto in = File("in", O_RDONLY | O_CREAT);
        const auto out = File("out", O_WRONLY | O_CREAT);
        const auto err = File("err", O_WRONLY | O_CREAT);
        const pid_t process = Start(m_input < 0 ? in : m_input, m_output < 0 ? out : m_output, err);
        for (const int descriptor : {in, out, err})
            ::close(descriptor);
        int status = 0;
        pid_t ended = 0;
        if (m_signal) {
            while (ended == 0 && !m_isReady()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                ended = ::waitpid(process, &status, WNOHANG);  // a program that ends early never gets ready
            }
            if (ended == 0) ::kill(process, m_signal);
        }
        if (ended == 0) ::waitpid(process, &status, 0);
        return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), Text("out"), Text("err")};
    }

    std::string Text(const char* name) const { return Support::ReadText(m_folder.Path() / name); }

private:
    int File(const char* name, int mode) const {
        return ::open((m_folder.Path() / name).c_str(), mode | O_CLOEXEC, 0600);
    }

    ProgramRun RunOnTerminal() {
        const int terminal = ::open(::ptsname(m_master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        const pid_t process = Start(terminal, terminal, terminal);
        ::close(terminal);
        ProgramRun run;
        char block[4096];
        for (ssize_t count; (count = ::read(m_master, block, sizeof block)) > 0;) {
            run.out.append(block, static_cast<std::size_t>(count));
            if (m_typed.empty() || run.out.find("tarn> ") == std::string::npos) continue;
            [[maybe_unused]] const auto written = ::write(m_master, m_typed.data(), m_typed.size());
            m_typed.clear();
        }
        ::close(m_master);
        int status = 0;
        ::waitpid(process, &status, 0);
        run.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        return run;
    }

    pid_t Start(int in, int out, int err) {
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, in, 0);
        ::posix_spawn_file_actions_adddup2(&actions, out, 1);
        ::posix_spawn_file_actions_adddup2(&actions, err, 2);
        std::vector<std::string> all = {TARN_PROGRAM};
        all.insert(all.end(), m_arguments.begin(), m_arguments.end());
        auto arguments = Pointers(all);
        auto environment = Pointers(m_environment);
        environment.pop_back();
        for (char** variable = environ; *variable; ++variable)
            environment.push_back(*variable);
        environment.push_back(nullptr);
        pid_t process = -1;
        ::posix_spawn(&process, TARN_PROGRAM, &actions, nullptr, arguments.data(), environment.data());
        ::posix_spawn_file_actions_destroy(&actions);
        return process;
    }

    static std::vector<char*> Pointers(std::vector<std::string>& texts) {
        std::vector<char*> pointers;
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    }

    Support::TempFolder m_folder;
    std::vector<std::string> m_arguments;
    std::vector<std::string> m_environment;
    int m_input = -1;
    int m_output = -1;
    int m_master = -1;  ///< of the terminal
    std::string m_typed;
    int m_signal = 0;
    std::function<bool()> m_isReady;
};

inline ProgramRun Tarn(std::vector<std::string> arguments) {
    return Program(std::move(arguments)).Run();
}
