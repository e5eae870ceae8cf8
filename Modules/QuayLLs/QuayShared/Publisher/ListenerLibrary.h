// The listener: a library that is found by name while the program runs.
#pragma once

#include <array>
#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "OSAL/Libraries.h"

namespace Publisher {

struct PublishMessage;

/// The entries of the listener, each used only when it is there.
enum class Entry : std::size_t {
    PublishMessage,
    WaitUntilEmpty,
    SuspendFromAction,
    WaitUntilSaveOperationDone,
    GetLatestMessageId,
    OpenOutput,  // of our own listener only
    Count
};

/// Thread: safe from several threads.
class ListenerLibrary {
public:
    static constexpr const char* SingletonName = "Publisher::ListenerLibrary";

    /// Under its usual names, beside the host program or in the "bin" folder there.
    ListenerLibrary();
    explicit ListenerLibrary(std::vector<std::string> names) : m_names(std::move(names)) {}
    /// Leaves the library loaded: it may have work to end.
    ~ListenerLibrary();
    ListenerLibrary(const ListenerLibrary&) = delete;
    ListenerLibrary& operator=(const ListenerLibrary&) = delete;

    bool IsListening() noexcept;
    /// Null when library or entry is missing; looked for once.
    void* Find(Entry entry);

private:
    using DoLog = std::uint8_t (*)();

    DoLog Attempt();
    void* Resolve(const char* name);

    static constexpr int attempts = 5;

    std::vector<std::string> m_names;
    std::mutex m_loading;
    std::vector<OSAL::Library> m_libraries;  // one a name
    std::atomic<DoLog> m_doLog{nullptr};
    std::atomic<int> m_attemptsLeft{attempts};
    std::array<std::once_flag, static_cast<std::size_t>(Entry::Count)> m_looked;
    std::array<void*, static_cast<std::size_t>(Entry::Count)> m_entries{};
};

}  // namespace Publisher
