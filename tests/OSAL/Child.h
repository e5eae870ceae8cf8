// A process that runs one function of a test.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

class Child {
public:
    /// @param body  gives the exit status
    template <typename Body>
    explicit Child(Body body) : m_process(fork()) {
        if (m_process == 0) _exit(body());
    }
    ~Child() { Kill(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Waits for its end: exit status, or minus the signal that ended it.
    int Status() {
        int status = 0;
        if (m_process <= 0 || waitpid(m_process, &status, 0) != m_process) return -1000;
        m_process = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    int Kill() {
        if (m_process > 0) kill(m_process, SIGKILL);
        return Status();
    }

private:
    pid_t m_process;
};
