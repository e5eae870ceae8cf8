// The whole-file writer by openat, fsync and rename. What is written has no name until it is whole, where the file
// system has files without one. The name that it then has until the rename is one of a few: who finds one taken, and
// nobody holding the lock that its writer holds, takes it away.
#include "OSAL/WholeFile.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "OSAL/posix/Descriptor.h"

namespace OSAL {

namespace {

namespace fs = std::filesystem;

constexpr int stallLimitMs = 10000;
constexpr int partNames = 16;  // of one file, for as many writers at once

std::string ReasonOf(int error) {
    if (error == ELOOP) return "it is a link";
    if (error == ENXIO) return "nobody reads it";
    if (error == ETIMEDOUT) return "its reader stands still";
    if (error == EBUSY) return "too many write it at once";
    return std::generic_category().message(error);
}

Refusal Refused(const fs::path& path, int error) {
    return {"can't write '" + path.string() + "': " + ReasonOf(error)};
}

/// Keeps a closed pipe's signal from ending the process: the write's own answer tells.
class PipeSignalHeld {
public:
    PipeSignalHeld() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    }
    ~PipeSignalHeld() {
        const timespec noWait{};
        while (!m_wasPending && sigtimedwait(&m_pipe, nullptr, &noWait) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    PipeSignalHeld(const PipeSignalHeld&) = delete;
    PipeSignalHeld& operator=(const PipeSignalHeld&) = delete;

private:
    sigset_t m_pipe;
    sigset_t m_before;
    bool m_wasPending;
};

/// 0 or the error. A regular file takes what it is given; anything else is asked first, as it could wait for ever.
int WriteAll(int file, std::string_view text, bool isRegular) {
    const PipeSignalHeld held;
    while (!text.empty()) {
        if (!isRegular) {
            pollfd ready{file, POLLOUT, 0};
            const int count = poll(&ready, 1, stallLimitMs);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return count < 0 ? errno : ETIMEDOUT;
        }
        const auto piece = isRegular ? text : text.substr(0, PIPE_BUF);  // so much goes in without waiting
        const auto written = write(file, piece.data(), piece.size());
        if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (written <= 0) return written < 0 ? errno : EIO;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

/// 0 or the error. What can't be synced, as on some network file systems, counts as written.
int Sync(int file) {
    while (fsync(file) != 0)
        if (errno != EINTR) return errno == EINVAL || errno == ENOTSUP || errno == EROFS ? 0 : errno;
    return 0;
}

/// A descriptor of ours for the stream that a link such as /dev/stdout names; none when it leads anywhere else.
Descriptor OwnStream(int folder, const char* name) {
    struct stat target, own;
    if (fstatat(folder, name, &target, 0) != 0) return Descriptor();
    const int last = S_ISREG(target.st_mode) ? STDERR_FILENO : 255;
    for (int k = STDOUT_FILENO; k <= last; ++k)
        if (fstat(k, &own) == 0 && own.st_dev == target.st_dev && own.st_ino == target.st_ino &&
            (fcntl(k, F_GETFL) & O_ACCMODE) != O_RDONLY)
            return Descriptor(fcntl(k, F_DUPFD_CLOEXEC, 0));
    return Descriptor();
}

/// The name cut so that the whole is one that the file system takes.
std::string PartName(const std::string& name, int number) {
    const std::string end = ".tarn" + std::to_string(number) + ".part";
    return "." + name.substr(0, NAME_MAX - 1 - end.size()) + end;
}

/// Held until the file is closed, by whatever ends the process. Where the file system knows no locks, nobody can hold
/// one, and no part counts as left behind.
bool Lock(int file) {
    return flock(file, LOCK_EX | LOCK_NB) == 0;
}

/// Takes the part away when its writer is gone.
void RemoveLeftOver(int folder, const std::string& part) {
    const Descriptor file(openat(folder, part.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat opened, named;
    if (!file || fstat(file.Get(), &opened) != 0 || !S_ISREG(opened.st_mode) || !Lock(file.Get())) return;
    // Its writer may have put it in its place meanwhile, and another taken the name.
    if (fstatat(folder, part.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && named.st_dev == opened.st_dev &&
        named.st_ino == opened.st_ino)
        unlinkat(folder, part.c_str(), 0);
}

}  // namespace

struct WholeFile::State {
    fs::path path;
    std::string name;  // within the folder
    std::string part;  // likewise; empty as long as there is nothing to rename
    Descriptor folder;
    Descriptor file;
    bool isRegular = true;
    bool isNameless = false;
    int error = 0;  // of the first write that failed

    ~State() {
        if (!part.empty()) unlinkat(folder.Get(), part.c_str(), 0);
    }

    /// The file, also while it has no name.
    std::string ProcessPath() const { return "/proc/self/fd/" + std::to_string(file.Get()); }
    /// 0 or the error.
    int Open();
    int MakePart(const struct stat* old);
    int OpenNamed(mode_t mode);
    int NamePart();
    int Finish();
};

int WholeFile::State::Open() {
    const std::string text = path.string();
    if (text.empty() || text.find('\0') != std::string::npos) return ENOENT;
    name = path.filename().string();
    if (name.empty() || name == "." || name == "..") return EISDIR;
    const std::string above = path.has_parent_path() ? path.parent_path().string() : ".";
    folder = Descriptor(open(above.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return errno;
    // Answers what stands there, and whether it may be written, without waiting and without changing it.
    file = Descriptor(openat(folder.Get(), name.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file && errno == ENOENT) return MakePart(nullptr);
    if (!file && errno == ELOOP) {
        file = OwnStream(folder.Get(), name.c_str());
        isRegular = false;
        return file ? 0 : ELOOP;
    }
    if (!file) return errno;
    struct stat old;
    if (fstat(file.Get(), &old) != 0) return errno;
    isRegular = S_ISREG(old.st_mode);
    if (!isRegular) return 0;
    return old.st_nlink > 1 ? ELOOP : MakePart(&old);
}

int WholeFile::State::MakePart(const struct stat* old) {
    for (int k = 0; k < partNames; ++k)
        RemoveLeftOver(folder.Get(), PartName(name, k));
    const mode_t mode = old ? 0600 : 0666;
    file = Descriptor(openat(folder.Get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
    isNameless = file && access(ProcessPath().c_str(), F_OK) == 0;
    if (const int failed = isNameless ? 0 : OpenNamed(mode)) return failed;
    if (!old) return 0;
    // Another's file stays the other's only for a process that may give files away.
    if (fchown(file.Get(), old->st_uid, old->st_gid) != 0 &&
        fchown(file.Get(), static_cast<uid_t>(-1), old->st_gid) != 0)
        errno = 0;
    return fchmod(file.Get(), old->st_mode & 07777) == 0 ? 0 : errno;
}

int WholeFile::State::OpenNamed(mode_t mode) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    for (int k = 0; k < partNames; ++k) {
        const std::string candidate = PartName(name, k);
        file = Descriptor(openat(folder.Get(), candidate.c_str(), flags, mode));
        if (!file && errno == EEXIST) continue;
        if (!file) return errno;
        // Another writer that looks for what is left behind may have been faster than the lock.
        struct stat status;
        if (!Lock(file.Get()) && errno == EWOULDBLOCK) continue;
        if (fstat(file.Get(), &status) != 0 || status.st_nlink == 0) continue;
        part = candidate;
        return 0;
    }
    return EBUSY;
}

/// Gives the nameless file a name, locked before anybody can find it.
int WholeFile::State::NamePart() {
    Lock(file.Get());
    for (int k = 0; k < partNames; ++k) {
        const std::string candidate = PartName(name, k);
        if (linkat(AT_FDCWD, ProcessPath().c_str(), folder.Get(), candidate.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            part = candidate;
            return 0;
        }
        if (errno != EEXIST) return errno;
    }
    return EBUSY;
}

int WholeFile::State::Finish() {
    if (error != 0) return error;
    if (!file) return EBADF;
    if (!isNameless && part.empty()) return file.Close() == 0 ? 0 : errno;
    if (const int unsynced = Sync(file.Get())) return unsynced;
    if (const int unnamed = isNameless ? NamePart() : 0) return unnamed;
    if (renameat(folder.Get(), part.c_str(), folder.Get(), name.c_str()) != 0) return errno;
    part.clear();
    if (file.Close() != 0) return errno;
    // The name too is on the disk only when its folder is; a folder that can't be read can't be synced.
    if (const Descriptor readable{openat(folder.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)})
        return Sync(readable.Get());
    return 0;
}

WholeFile::WholeFile(std::unique_ptr<State> state) : m_state(std::move(state)) {}
WholeFile::~WholeFile() = default;
WholeFile::WholeFile(WholeFile&&) noexcept = default;
WholeFile& WholeFile::operator=(WholeFile&&) noexcept = default;

Outcome<WholeFile> WholeFile::Begin(const fs::path& path) {
    auto state = std::make_unique<State>();
    state->path = path;
    if (const int error = state->Open()) return Refused(path, error);
    return WholeFile(std::move(state));
}

Outcome<> WholeFile::Write(std::string_view piece) {
    State& state = *m_state;
    if (state.error == 0) state.error = state.file ? WriteAll(state.file.Get(), piece, state.isRegular) : EBADF;
    if (state.error != 0) return Refused(state.path, state.error);
    return {};
}

Outcome<> WholeFile::Commit() {
    if (const int error = m_state->Finish()) return Refused(m_state->path, error);
    return {};
}

}  // namespace OSAL
