// Files and folders by POSIX calls. The system would cut a path at a zero byte: such a path names nothing.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "OSAL/Files.h"
#include "OSAL/WholeFile.h"

namespace OSAL {

namespace {

struct Closer {
    FileHandle handle;
    ~Closer() { CloseFile(handle); }
};

bool IsUsable(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

bool StatOf(const std::string& path, struct stat& status) {
    return IsUsable(path) && stat(path.c_str(), &status) == 0;
}

bool LinkStatOf(const std::string& path, struct stat& status) {
    return IsUsable(path) && lstat(path.c_str(), &status) == 0;
}

/// The open flags of a mode; false when the mode asks for nothing. Emptying comes later, when it is known what was
/// opened.
bool FlagsOf(unsigned mode, bool openExisting, int& flags) {
    if (mode & Append)
        flags = O_APPEND | O_CREAT | (mode & (ReadOnly | ReadWrite) ? O_RDWR : O_WRONLY);
    else if (mode & (ReadOnly | ReadWrite))
        flags = openExisting && !(mode & ReadWrite) ? O_RDONLY : openExisting ? O_RDWR : O_RDWR | O_CREAT;
    else
        return false;
    flags |= O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (mode & NoLink ? O_NOFOLLOW : 0);
    return true;
}

/// Whether what was opened is something to read and write at will; it then waits as usual again.
bool IsAcceptable(int file, unsigned mode) {
    struct stat status;
    if (fstat(file, &status) != 0 || S_ISDIR(status.st_mode) || S_ISFIFO(status.st_mode)) return false;
    if (mode & NoLink && status.st_nlink > 1) return false;
    return S_ISREG(status.st_mode) || fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK) == 0;
}

/// A file that stood there before may be open to others. Another user's stays as that one wants it.
void MakePrivate(int file) {
    struct stat status;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() && status.st_mode & 077)
        fchmod(file, status.st_mode & 0700);
}

ssize_t ReadSome(int file, void* buffer, std::size_t size) {
    ssize_t got;
    do {
        got = read(file, buffer, size);
    } while (got < 0 && errno == EINTR);
    return got;
}

int CopyContents(FileHandle source, FileHandle target) {
    std::vector<char> buffer(1 << 16);
    for (;;) {
        const auto got = ReadSome(static_cast<int>(source), buffer.data(), buffer.size());
        if (got < 0) return Failure;
        if (got == 0) return Success;
        std::size_t written = 0;
        if (WriteFile(target, buffer.data(), static_cast<std::size_t>(got), written) != Success) return Failure;
    }
}

bool IsSameFile(FileHandle a, FileHandle b) {
    struct stat first, second;
    return fstat(static_cast<int>(a), &first) == 0 && fstat(static_cast<int>(b), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace

bool IsLink(const std::string& path) {
    // With a separator at its end a path names what the link leads to.
    const auto end = path.find_last_not_of('/');
    struct stat status;
    if (!LinkStatOf(end == std::string::npos ? path : path.substr(0, end + 1), status)) return false;
    return S_ISLNK(status.st_mode) || (S_ISREG(status.st_mode) && status.st_nlink > 1);
}

int CopyFile(const std::string& from, const std::string& to, unsigned extra) {
    const Closer source{OpenFile(from, ReadOnly | extra, true)};
    if (source.handle == InvalidFile) return Failure;
    // Opened without emptying it first: a file copied onto itself would be lost.
    struct stat status;
    const bool exists = StatOf(to, status);
    const Closer target{OpenFile(to, ReadWrite | extra, exists)};
    if (target.handle == InvalidFile || IsSameFile(source.handle, target.handle)) return Failure;
    if (exists && ftruncate(static_cast<int>(target.handle), 0) != 0) return Failure;
    return CopyContents(source.handle, target.handle);
}

std::vector<std::string> ListDirectory(const std::string& folder) {
    std::vector<std::string> names;
    if (!IsUsable(folder)) return names;
    struct CloseDirectory {
        void operator()(DIR* directory) const { closedir(directory); }
    };
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(folder.c_str()));
    if (!directory) return names;
    while (const dirent* entry = readdir(directory.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && name != "result.csv" && !IsLeftOverPart(name)) names.push_back(name);
    }
    return names;
}

bool DirectoryExists(const std::string& path) {
    struct stat status;
    return StatOf(path, status) && S_ISDIR(status.st_mode);
}

bool CreateDirectory(const std::string& path) {
    if (!IsUsable(path)) return false;
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return DirectoryExists(path);
}

bool FileExists(const std::string& path) {
    struct stat status;
    if (!LinkStatOf(path, status)) return false;
    if (S_ISDIR(status.st_mode) || DirectoryExists(path)) return false;
    if (S_ISLNK(status.st_mode)) throw exception("the given file is a symbolic link - not supportted");
    return true;
}

std::string AccessTrouble(const std::string& path, Access access) {
    const int wanted = access == Access::Read ? R_OK : access == Access::List ? R_OK | X_OK : W_OK | X_OK;
    const int error = !IsUsable(path) ? ENOENT : ::access(path.c_str(), wanted) != 0 ? errno : 0;
    return error == 0 ? std::string() : std::generic_category().message(error);
}

int ReplaceFile(const std::string& from, const std::string& to) {
    if (!IsUsable(from) || !IsUsable(to)) return Failure;
    if (std::rename(from.c_str(), to.c_str()) == 0) return Success;
    if (errno != EXDEV) return Failure;
    // Another file system: copy beside the target first, so that the target is never half written.
    const std::string beside = to + ".new";
    if (CopyFile(from, beside) == Success && std::rename(beside.c_str(), to.c_str()) == 0) {
        unlink(from.c_str());
        return Success;
    }
    unlink(beside.c_str());
    return Failure;
}

FileHandle OpenFile(const std::string& path, unsigned mode, bool openExisting) {
    int flags = 0;
    if (!IsUsable(path) || !FlagsOf(mode, openExisting, flags)) return InvalidFile;
    int file;
    do {
        file = open(path.c_str(), flags, mode & Private ? 0600 : 0666);
    } while (file < 0 && errno == EINTR);
    if (file < 0) return InvalidFile;
    // A pipe would swallow what fits and then wait for ever.
    const bool emptied = !(mode & Append) && !openExisting;
    struct stat status;
    if (IsAcceptable(file, mode) &&
        (!emptied || (fstat(file, &status) == 0 && (!S_ISREG(status.st_mode) || ftruncate(file, 0) == 0)))) {
        if (mode & Private) MakePrivate(file);
        return file;
    }
    close(file);
    return InvalidFile;
}

int ReadFile(FileHandle file, std::uint64_t position, void* data, std::size_t size, std::size_t& got) {
    got = 0;
    auto* bytes = static_cast<char*>(data);
    while (got < size) {
        const auto at = static_cast<off_t>(position + got);
        const auto count = pread(static_cast<int>(file), bytes + got, size - got, at);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Failure;
        if (count == 0) break;
        got += static_cast<std::size_t>(count);
    }
    return Success;
}

int FileSize(FileHandle file, std::uint64_t& size) {
    struct stat status;
    if (fstat(static_cast<int>(file), &status) != 0) return Failure;
    size = static_cast<std::uint64_t>(status.st_size);
    return Success;
}

int WriteFile(FileHandle file, const void* data, std::size_t size, std::size_t& written) {
    written = 0;
    if (file < 0 || (!data && size > 0)) return Failure;
    const auto* bytes = static_cast<const char*>(data);
    while (written < size) {
        const auto count = write(static_cast<int>(file), bytes + written, size - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return Failure;
        written += static_cast<std::size_t>(count);
    }
    return Success;
}

int WriteFileAt(FileHandle file, std::uint64_t position, const void* data, std::size_t size) {
    if (file < 0 || (!data && size > 0)) return Failure;
    for (std::size_t written = 0; written < size;) {
        const auto count = pwrite(static_cast<int>(file), static_cast<const char*>(data) + written, size - written,
                                  static_cast<off_t>(position + written));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return Failure;
        written += static_cast<std::size_t>(count);
    }
    return Success;
}

void CloseFile(FileHandle file) {
    if (file >= 0) close(static_cast<int>(file));
}

}  // namespace OSAL
