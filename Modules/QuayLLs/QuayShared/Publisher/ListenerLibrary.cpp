#include "Publisher/ListenerLibrary.h"

namespace Publisher {

namespace {
constexpr std::array<const char*, static_cast<std::size_t>(Entry::Count)> entryNames = {
    "PUBLISH_MESSAGE",       "WAIT_UNTILL_EMPTY", "SUSPEND_FROM_ACTION", "WAIT_UNTILL_SAVE_OPERATION_DONE",
    "GET_LATEST_MESSAGE_ID", "OPEN_OUTPUT",
};
}  // namespace

ListenerLibrary::ListenerLibrary() : ListenerLibrary({"libQuayListener.so", "bin/libQuayListener.so"}) {}

ListenerLibrary::~ListenerLibrary() {
    for (OSAL::Library& library : m_libraries)
        library.Keep();
}

void* ListenerLibrary::Resolve(const char* name) {
    const std::lock_guard guard(m_loading);
    if (m_libraries.empty())
        for (const std::string& libraryName : m_names)
            m_libraries.emplace_back(libraryName);
    for (OSAL::Library& library : m_libraries)
        if (library.Load()) return library.GetProcAddress(name);
    return nullptr;
}

ListenerLibrary::DoLog ListenerLibrary::Attempt() {
    m_attemptsLeft.fetch_sub(1, std::memory_order_relaxed);
    const auto doLog = reinterpret_cast<DoLog>(Resolve("DO_LOG"));
    m_doLog.store(doLog, std::memory_order_release);
    return doLog;
}

bool ListenerLibrary::IsListening() noexcept {
    try {
        DoLog doLog = m_doLog.load(std::memory_order_acquire);
        if (!doLog && m_attemptsLeft.load(std::memory_order_relaxed) > 0) doLog = Attempt();
        return doLog && doLog() != 0;
    } catch (...) {
        return false;  // a listener that fails to say hears nothing
    }
}

void* ListenerLibrary::Find(Entry entry) {
    const auto index = static_cast<std::size_t>(entry);
    std::call_once(m_looked[index], [&] { m_entries[index] = Resolve(entryNames[index]); });
    return m_entries[index];
}

}  // namespace Publisher
