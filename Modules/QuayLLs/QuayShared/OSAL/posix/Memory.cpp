// Shared blocks by shm_open, with locks that the system takes back from a killed process; robust mutexes; events by
// the kernel's futex, as a condition variable may hang for good behind a waiter that was killed.
#include "OSAL/Memory.h"

#include <fcntl.h>
#include <linux/futex.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <new>

#include "OSAL/Errors.h"
#include "OSAL/posix/Descriptor.h"

namespace OSAL {

namespace {

/// Bytes of a block's file that are locked: the first while it is opened or left, the second by each user.
enum LockedByte : off_t { Gate = 0, Users = 1 };

bool LockByte(int file, short kind, LockedByte byte, int command) {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    while (fcntl(file, command, &range) != 0)
        if (errno != EINTR) return false;
    return true;
}

/// "/Global.name" for "Global\name"; names of any length and content fit.
std::string SystemName(const std::string& name) {
    std::string system = "/" + name.substr(0, 200);
    std::replace_if(
        system.begin() + 1, system.end(), [](char c) { return c == '/' || c == '\\'; }, '.');
    return name.size() > 200 ? system + "." + std::to_string(std::hash<std::string>()(name)) : system;
}

/// The block's file behind its gate; none when the system refuses.
Descriptor EnterGate(const std::string& name) {
    for (;;) {
        Descriptor file(shm_open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        struct stat status;
        if (!file || !LockByte(file.Get(), F_WRLCK, Gate, F_OFD_SETLKW) || fstat(file.Get(), &status) != 0)
            return Descriptor();
        if (status.st_nlink > 0) return file;  // else the last user took it away meanwhile
    }
}

}  // namespace

std::unique_ptr<SharedBlock> SharedBlock::Open(const std::string& name, std::uint64_t size) {
    constexpr std::uint64_t largest = std::uint64_t{1} << 62;
    const std::string system = SystemName(name);
    Descriptor file = EnterGate(system);
    if (!file) return nullptr;
    const bool alone = LockByte(file.Get(), F_WRLCK, Users, F_OFD_SETLK);
    const auto bytes = static_cast<off_t>(size);
    struct stat status {};
    bool usable = size > 0 && size <= largest;
    if (alone)  // what a killed process left is as good as nothing
        usable = usable && ftruncate(file.Get(), 0) == 0 && posix_fallocate(file.Get(), 0, bytes) == 0;
    else
        usable = usable && fstat(file.Get(), &status) == 0 && status.st_size >= bytes;
    void* const data = usable ? mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0) : MAP_FAILED;
    if (data == MAP_FAILED) {
        if (alone) shm_unlink(system.c_str());
        return nullptr;
    }
    LockByte(file.Get(), F_RDLCK, Users, F_OFD_SETLK);
    std::unique_ptr<SharedBlock> block(new SharedBlock);
    block->m_name = system;
    block->m_data = static_cast<std::byte*>(data);
    block->m_size = size;
    block->m_existed = !alone;
    LockByte(file.Get(), F_UNLCK, Gate, F_OFD_SETLK);
    block->m_handle = file.Release();
    return block;
}

SharedBlock::~SharedBlock() {
    const Descriptor file(static_cast<int>(m_handle));
    munmap(m_data, m_size);
    LockByte(file.Get(), F_WRLCK, Gate, F_OFD_SETLKW);
    if (LockByte(file.Get(), F_WRLCK, Users, F_OFD_SETLK)) shm_unlink(m_name.c_str());
}

struct NamedLock::Named {
    std::unique_ptr<SharedBlock> block;

    struct Content {
        std::atomic<std::uint32_t> made;
        pthread_mutex_t mutex;
    };
    Content& Inside() const { return *std::launder(reinterpret_cast<Content*>(block->Data())); }

    void Make() const {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&Inside().mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    /// Takes over from a holder that was killed.
    bool Taken(int answer) const {
        if (answer == EOWNERDEAD) pthread_mutex_consistent(&Inside().mutex);
        return answer == 0 || answer == EOWNERDEAD;
    }
};

NamedLock::NamedLock(const char* name) {
    if (!name) return;
    auto named = std::make_unique<Named>();
    named->block = SharedBlock::Open(name, sizeof(Named::Content));
    if (!named->block) throw exception("Can't make the lock " + std::string(name));
    if (!named->block->Existed()) named->Make();
    m_named = std::move(named);
}

NamedLock::~NamedLock() = default;

bool NamedLock::Existed() const {
    return m_named && m_named->block->Existed();
}

void NamedLock::Enter() {
    if (!m_named) return m_own.Enter();
    m_named->Taken(pthread_mutex_lock(&m_named->Inside().mutex));
}

bool NamedLock::TryEnter() {
    return m_named ? m_named->Taken(pthread_mutex_trylock(&m_named->Inside().mutex)) : m_own.TryEnter();
}

void NamedLock::Leave() {
    if (!m_named) return m_own.Leave();
    pthread_mutex_unlock(&m_named->Inside().mutex);
}

namespace {
std::atomic_ref<std::uint32_t> FlagOf(const SharedBlock& block) {
    return std::atomic_ref<std::uint32_t>(*reinterpret_cast<std::uint32_t*>(block.Data()));
}
}  // namespace

NamedEvent::NamedEvent(const std::string& name) : m_block(SharedBlock::Open(name, sizeof(std::uint32_t))) {
    if (!m_block) throw exception("Can't make the event " + name);
}

void NamedEvent::Set() {
    FlagOf(*m_block).store(1);
    syscall(SYS_futex, m_block->Data(), FUTEX_WAKE, 1, nullptr, nullptr, 0);
}

bool NamedEvent::Wait(std::uint32_t timeoutMs) {
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += timeoutMs / 1000;
    end.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1000000;
    if (end.tv_nsec >= 1000000000) {
        ++end.tv_sec;
        end.tv_nsec -= 1000000000;
    }
    const timespec* const limit = timeoutMs == SyncObjectsOSAL::Infinite ? nullptr : &end;
    while (FlagOf(*m_block).exchange(0) == 0)
        if (syscall(SYS_futex, m_block->Data(), FUTEX_WAIT_BITSET, 0, limit, nullptr, FUTEX_BITSET_MATCH_ANY) != 0 &&
            errno == ETIMEDOUT)
            return FlagOf(*m_block).exchange(0) != 0;
    return true;
}

}  // namespace OSAL
