#include "Streams/LogPrinter.h"

#include <sstream>

#include "Streams/AppStreams.h"

namespace Utilities {

namespace {
using Guard = SyncObjectsOSAL::Entered<Synchronization::CriticalSection>;
}  // namespace

void StreamLogDevice::Write(const std::string& text) {
    const Guard guard(m_section);
    if (m_stream) *m_stream << text << std::endl;
}

void BriefLogFormatter::Format(unsigned level, const char*, const char* function, const char* text,
                               std::ostream& stream) {
    stream << Streams::PaddedRight(Streams::LevelTag(level), 10) << "| "
           << Streams::PaddedRight(function ? function : "", 40) << " | " << (text ? text : "");
}

LogPrinter::Record* LogPrinter::Find(const std::string& name) {
    const auto found = m_byName.find(name);
    return found == m_byName.end() ? nullptr : &*found->second;
}

void LogPrinter::AddDevice(const std::string& name, ILogDevice* device) {
    const Guard guard(m_section);
    auto* record = Find(name);
    if (!record) {
        const auto added = m_records.emplace(m_records.end());
        m_byName[name] = added;
        record = &*added;
    }
    record->device = device;
}

void LogPrinter::RemoveDevice(const std::string& name) {
    const Guard guard(m_section);
    if (const auto found = m_byName.find(name); found != m_byName.end()) {
        m_records.erase(found->second);
        m_byName.erase(found);
    }
}

void LogPrinter::SetFilter(const std::string& name, ILogFilter* filter) {
    const Guard guard(m_section);
    if (auto* record = Find(name)) record->filter = filter;
}

void LogPrinter::SetFormatter(const std::string& name, ILogFormatter* formatter) {
    const Guard guard(m_section);
    if (auto* record = Find(name)) record->formatter = formatter;
}

void LogPrinter::SetMask(const std::string& name, std::uint32_t mask) {
    const Guard guard(m_section);
    if (auto* record = Find(name)) record->mask = mask;
}

void LogPrinter::Print(unsigned level, const char* file, std::uint32_t, const char* function, const char* text) {
    const Guard guard(m_section);
    for (const auto& record : m_records) {
        if ((record.mask & level) == 0 || !record.device) continue;
        if (record.filter && !record.filter->Accepts(level, file, function, text)) continue;
        if (!record.formatter) {
            record.device->Write(text ? text : "");
            continue;
        }
        std::ostringstream line;
        record.formatter->Format(level, file, function, text, line);
        record.device->Write(line.str());
    }
}

}  // namespace Utilities
