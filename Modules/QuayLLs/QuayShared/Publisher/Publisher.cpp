#include "Publisher/Publisher.h"

#include <algorithm>
#include <cctype>

#include "OSAL/Threads.h"
#include "OSAL/Time.h"
#include "Publisher/ListenerLibrary.h"
#include "SingletonSlots.h"

namespace Publisher {

namespace {

ListenerLibrary& Listener() {
    return *SingletonWrapper<ListenerLibrary>::accessObject();
}

template <typename... Parameters>
std::uint32_t Ask(Entry entry, Parameters... parameters) {
    const auto call = reinterpret_cast<std::uint32_t (*)(Parameters...)>(Listener().Find(entry));
    return call ? call(parameters...) : 0;
}

/// Publishes the message of a record, with its named arguments.
void Publish(const PublishRecord& record, const char* names, const Arguments& arguments, const StartTime* start) {
    const PublishRecord copy = record;
    std::vector<std::string> split;
    if (names && SplitArgumentNames(names, arguments.size(), split))
        for (std::size_t k = 1; k < arguments.size(); ++k)
            arguments[k]->SetName(split[k]);
    std::vector<TypeAny::placeholder*> views;
    for (const auto& argument : arguments)
        views.push_back(argument.get());
    PublishMessageTo({&copy, views.size(), views.empty() ? nullptr : views.data(), start});
}

bool IsConstant(const std::string& item) {
    return item.empty() || item == "true" || item == "false" || item.size() < 2 ||
           !std::isalpha(static_cast<unsigned char>(item[1]));
}

/// The name of an item that isn't an initialiser.
std::string NameOf(std::string item) {
    constexpr std::string_view call = ".c_str()";
    if (item.ends_with(call)) item.resize(item.size() - call.size());
    return IsConstant(item) ? "Constant" : item;
}

/// A wait of the layer below; null when nobody listens.
void* BeginSleep(const OSAL::PublishedSleep& sleep) {
    if (!IsPublishing()) return nullptr;
    auto scope = std::make_unique<PublishScope>();
    PublishRecord record;
    record.line = sleep.line;
    record.file = sleep.file;
    record.function = sleep.function;
    record.signature = sleep.signature;
    record.action = "Sleep";
    try {
        scope->Begin(std::move(record), sleep.argumentNames, ArgumentsOf(static_cast<int>(sleep.amount)));
    } catch (...) {
        // A wait is worth more than its trace.
    }
    return scope.release();
}

void EndSleep(void* scope) {
    const std::unique_ptr<PublishScope> owner(static_cast<PublishScope*>(scope));
}

constexpr OSAL::SleepScopeHook sleepHook{&BeginSleep, &EndSleep};

/// The layer below reports upward from the moment this module is loaded until it goes.
struct HookInstaller {
    HookInstaller() { OSAL::SetSleepScopeHook(&sleepHook); }
    ~HookInstaller() { OSAL::SetSleepScopeHook(nullptr); }
};
const HookInstaller hookInstaller;

}  // namespace

bool IsPublishing() noexcept {
    return Listener().IsListening();
}

void PublishMessageTo(const PublishMessage& message) {
    if (const auto publish = reinterpret_cast<void (*)(const PublishMessage*)>(Listener().Find(Entry::PublishMessage)))
        publish(&message);
}

std::uint32_t WaitUntilEmpty() {
    return Ask(Entry::WaitUntilEmpty);
}

std::uint32_t WaitUntilSaveOperationDone() {
    return Ask(Entry::WaitUntilSaveOperationDone);
}

std::uint32_t SuspendFromAction(std::uint8_t suspended) {
    return Ask(Entry::SuspendFromAction, suspended);
}

std::uint32_t GetLatestMessageId() {
    return Ask(Entry::GetLatestMessageId);
}

OSAL::Outcome<> PublishToFile(const std::string& path) {
    using Open = const char* (*)(const char*);
    const auto open = reinterpret_cast<Open>(Listener().Find(Entry::OpenOutput));
    const char* const why = open ? open(path.c_str()) : "there is no libQuayListener.so beside the program";
    if (why) return OSAL::Refusal{"can't publish to '" + path + "': " + why};
    return {};
}

bool SplitArgumentNames(const std::string& list, std::size_t count, std::vector<std::string>& names) {
    names.clear();
    std::string rest = list;
    std::erase_if(rest, [](unsigned char c) { return std::isspace(c); });
    for (bool more = !rest.empty(); more;) {
        const bool isInitialiser = rest.starts_with('{');
        const std::size_t closing = isInitialiser ? std::min(rest.find('}'), rest.size()) : 0;
        const std::size_t comma = rest.find(',', closing);
        if (isInitialiser)
            names.push_back(rest.substr(1, std::min(rest.find(','), closing) - 1));
        else
            names.push_back(NameOf(rest.substr(0, comma)));
        more = comma != std::string::npos;
        if (more) rest.erase(0, comma + 1);
    }
    return names.size() == count;
}

void PublishException(PublishRecord record, const char* names, Arguments arguments) noexcept {
    try {
        record.kind = ExceptionRaised;
        record.threadId = OSAL::GetCurrentThreadId();
        Publish(record, names, arguments, nullptr);
    } catch (...) {
        // What is being thrown is worth more than its trace.
    }
}

void PublishScope::Begin(PublishRecord record, const char* names, Arguments arguments) {
    m_record = std::move(record);
    m_record.threadId = OSAL::GetCurrentThreadId();
    m_record.kind = ScopeStart;
    m_started = true;
    m_start = {OSAL::QueryPerformanceCounter(), static_cast<std::uint32_t>(OSAL::GetTickCount())};
    Publish(m_record, names, arguments, &m_start);
}

PublishScope::~PublishScope() {
    if (!m_started) return;
    try {
        const double counts = static_cast<double>(OSAL::QueryPerformanceCounter() - m_start.counter);
        const double elapsed = counts * 1e3 / static_cast<double>(OSAL::QueryPerformanceFrequency());
        m_record.elapsed = elapsed < 0 ? -1.0 : elapsed;
        m_record.kind = ScopeEnd;
        Publish(m_record, nullptr, {}, &m_start);
    } catch (...) {
        // The operation is done, told or not.
    }
}

}  // namespace Publisher
