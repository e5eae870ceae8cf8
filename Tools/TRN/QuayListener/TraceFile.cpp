#include "TraceFile.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

#include "OSAL/Process.h"
#include "OSAL/Time.h"

namespace QuayListener {

namespace {

using Json = nlohmann::ordered_json;
using Publisher::PublishMessage;

const char* KindOf(std::uint32_t kind) {
    switch (kind) {
        case Publisher::ScopeStart:
            return "begin";
        case Publisher::ScopeEnd:
            return "end";
        default:
            return "exception";
    }
}

/// A number or a text; anything else as the container shows it.
Json ValueOf(const TypeAny::placeholder& argument) {
    if (argument.GetTypeName() == "int" && argument.GetSize() == sizeof(int)) {
        int value = 0;
        std::memcpy(&value, argument.GetData(), sizeof value);
        return value;
    }
    return argument.IsText() ? std::string(static_cast<const char*>(argument.GetData()), argument.GetSize())
                             : argument.ToText();
}

/// The arguments by name, without the marker before them.
Json ArgumentsOf(const PublishMessage& message) {
    Json arguments = Json::object();
    for (std::uint64_t k = 1; message.arguments && k < message.argumentCount; ++k)
        arguments[message.arguments[k]->GetName()] = ValueOf(*message.arguments[k]);
    return arguments;
}

std::string UtcNow() {
    using namespace std::chrono;
    const auto now = floor<microseconds>(system_clock::now());
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    return text.data();
}

/// Text of any bytes: what isn't UTF-8 is replaced.
std::string Dumped(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

double MicrosecondsOf(const PublishMessage& message) {
    const double countsPerMicrosecond = static_cast<double>(OSAL::QueryPerformanceFrequency()) / 1e6;
    const auto counter = message.start ? message.start->counter : OSAL::QueryPerformanceCounter();
    const double begin = static_cast<double>(counter) / countsPerMicrosecond;
    return begin + (message.record->kind == Publisher::ScopeEnd ? message.record->elapsed * 1e3 : 0.0);
}

/// Of a Chrome trace, behind each event; the next one takes its place.
constexpr const char* ListEnd = "\n]\n";

}  // namespace

std::string JsonLine(const Heard& heard) {
    const Publisher::PublishRecord& record = *heard.message.record;
    return Dumped({{"kind", KindOf(record.kind)},
                   {"action", record.action},
                   {"function", record.function},
                   {"file", record.file},
                   {"line", record.line},
                   {"elapsed_ms", record.elapsed},
                   {"thread", record.threadId},
                   {"depth", heard.depth},
                   {"arguments", ArgumentsOf(heard.message)},
                   {"utc", UtcNow()}}) +
           "\n";
}

std::string ChromeEvent(const Heard& heard) {
    const Publisher::PublishRecord& record = *heard.message.record;
    const bool isBegin = record.kind == Publisher::ScopeStart, isEnd = record.kind == Publisher::ScopeEnd;
    Json event{{"name", record.function},
               {"cat", record.action.empty() ? "Exception" : record.action},
               {"ph", isBegin ? "B"
                      : isEnd ? "E"
                              : "i"},
               {"ts", MicrosecondsOf(heard.message)},
               {"pid", OSAL::GetCurrentProcessId()},
               {"tid", record.threadId}};
    if (isEnd) return Dumped(event);
    if (!isBegin) event["s"] = "t";  // an instant of its thread
    event["args"] = ArgumentsOf(heard.message);
    event["args"]["place"] = std::string(record.file) + ":" + std::to_string(record.line);
    return Dumped(event);
}

OSAL::Outcome<> TraceFile::Open(const std::string& path) {
    Close();
    m_file = OSAL::OpenFile(path, OSAL::ReadWrite | OSAL::NoLink, false);
    if (!IsOpen()) return OSAL::Refusal{"it can't be opened for writing, or is a link"};
    m_isChrome = path.ends_with(".json");
    m_end = 0;
    if (m_isChrome) Put("[", ListEnd);
    return {};
}

void TraceFile::Put(const std::string& text, const std::string& behind) {
    const std::string all = text + behind;
    if (OSAL::WriteFileAt(m_file, m_end, all.data(), all.size()) == OSAL::Success)
        m_end += text.size();
    else
        Close();  // a full disk ends the trace, not the program
}

void TraceFile::Write(const Heard& heard) {
    if (m_isChrome)
        Put((m_end == 1 ? "\n" : ",\n") + ChromeEvent(heard), ListEnd);
    else
        Put(JsonLine(heard), "");
}

void TraceFile::Close() {
    OSAL::CloseFile(std::exchange(m_file, OSAL::InvalidFile));
}

}  // namespace QuayListener
