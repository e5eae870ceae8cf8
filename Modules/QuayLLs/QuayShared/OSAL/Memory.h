// What processes share by name: a lock, an event, a piece of memory. An object is there as long as a process has it
// open, and a killed process has nothing open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "OSAL/Locks.h"

namespace OSAL {

/// Memory with a name, all zero when it is made. The system's part of the objects below.
class SharedBlock {
public:
    /// Opens the block, or makes it when nobody has it. Null when the system can't give `size` bytes, or the block is
    /// there and smaller.
    static std::unique_ptr<SharedBlock> Open(const std::string& name, std::uint64_t size);
    ~SharedBlock();
    SharedBlock(const SharedBlock&) = delete;
    SharedBlock& operator=(const SharedBlock&) = delete;

    std::byte* Data() const { return m_data; }
    /// True for who found it there.
    bool Existed() const { return m_existed; }

private:
    SharedBlock() = default;
    std::string m_name;
    std::intptr_t m_handle = -1;
    std::byte* m_data = nullptr;
    std::uint64_t m_size = 0;
    bool m_existed = false;
};

/// A recursive lock: of this process when it has no name, else of all that know the name. One whose holder was killed
/// goes to the next who asks.
class NamedLock {
public:
    /// @param name  null for none. @throws OSAL::exception when the system can't give a lock of that name
    explicit NamedLock(const char* name = nullptr);
    ~NamedLock();
    NamedLock(const NamedLock&) = delete;
    NamedLock& operator=(const NamedLock&) = delete;

    /// Whether somebody had it open already.
    bool Existed() const;
    void Enter();
    /// False at once when another has it.
    bool TryEnter();
    void Leave();

private:
    struct Named;
    std::unique_ptr<Named> m_named;
    SyncObjectsOSAL::CriticalSectionOSAL m_own;
};

/// An event that wakes one waiter and is then unset again.
class NamedEvent {
public:
    /// @throws OSAL::exception when the system can't give an event of that name
    explicit NamedEvent(const std::string& name);
    void Set();
    /// @return false when the time ran out; `Infinite` waits for as long as it takes
    bool Wait(std::uint32_t timeoutMs);

private:
    std::unique_ptr<SharedBlock> m_block;
};

/// A piece of memory that processes write and read as a whole.
/// Thread: every operation but the constructor and `WaitForData` holds the memory's lock, between processes too.
class SharedMemory {
public:
    enum Result : std::int32_t { Done = 0, Refused = -1, TooLarge = 8, NotOpen = 676 };

    /// The memory "Global\<name>" with the lock "<name>Read" and the event "<name>DataReady". What goes wrong is told
    /// to the debug output only; `IsOpen` tells.
    SharedMemory(const char* name, std::uint64_t size);
    SharedMemory(const wchar_t* name, std::uint64_t size);
    ~SharedMemory() { Close(); }
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    /// Opens or makes the memory when it isn't open; nothing after `Close`.
    void Open();
    bool IsOpen();
    /// @param buffer  takes `size` bytes. @param size  0 takes the whole and tells how much that was
    /// @return 676 without memory; -1 for more than there is
    std::int32_t Read(std::vector<std::byte>& buffer, std::uint64_t& size);
    /// The text at the start up to its zero byte, or the whole when there is none.
    std::int32_t Read(std::string& text);
    /// Writes from the start on, wakes a waiter, and then gives readers a millisecond. Null data clears `size` bytes
    /// and wakes nobody. @return 676 without memory; 8, and nothing changed, for more than there is
    std::int32_t Write(const void* data, std::uint64_t size);
    /// True when something was written since the last wait that gave true, or `Close` was called meanwhile.
    bool WaitForData(std::uint32_t timeoutMs);
    void Close();

private:
    std::uint64_t m_size;
    std::string m_name;
    std::unique_ptr<NamedLock> m_lock;
    std::unique_ptr<NamedEvent> m_dataReady;
    std::unique_ptr<SharedBlock> m_block;
    bool m_closed = false;
};

}  // namespace OSAL
