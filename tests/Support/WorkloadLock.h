// One test at a time runs the workload under its real name, whoever else tests on this machine: a burn-in test ends
// every program of that name.
#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>

namespace Support {

class WorkloadLock {
public:
    WorkloadLock() : m_file(::open(Path().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) { ::flock(m_file, LOCK_EX); }
    ~WorkloadLock() { ::close(m_file); }
    WorkloadLock(const WorkloadLock&) = delete;
    WorkloadLock& operator=(const WorkloadLock&) = delete;

private:
    static std::filesystem::path Path() { return std::filesystem::temp_directory_path() / "tarn-workload-tests.lock"; }

    int m_file;
};

}  // namespace Support
