// A list of named log devices, each with its own filter, formatter and mask.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <ostream>
#include <string>

#include "OSAL/Locks.h"
#include "SingletonSlots.h"

namespace Utilities {

class ILogInterface {
public:
    virtual ~ILogInterface() = default;
};

class ILogDevice : public ILogInterface {
public:
    virtual void Write(const std::string& text) = 0;
};

class ILogFormatter : public ILogInterface {
public:
    virtual void Format(unsigned level, const char* file, const char* function, const char* text,
                        std::ostream& stream) = 0;
};

class ILogFilter {
public:
    /// False drops the line.
    virtual bool Accepts(unsigned level, const char* file, const char* function, const char* text) = 0;
    virtual ~ILogFilter() = default;
};

/// Writes each text as a line of a stream, which belongs to the caller.
class StreamLogDevice : public ILogDevice {
public:
    explicit StreamLogDevice(std::ostream* stream) : m_stream(stream) {}
    void Write(const std::string& text) override;

private:
    std::ostream* m_stream;
    Synchronization::CriticalSection m_section;
};

/// "[OEMINFO] | <function in 40 columns> | <text>".
class BriefLogFormatter : public ILogFormatter {
public:
    void Format(unsigned level, const char* file, const char* function, const char* text,
                std::ostream& stream) override;
};

/// The one of the process, through `SingletonWrapper<LogPrinter>`. Devices, filters and formatters belong to whoever
/// adds them and are taken away before they die. Setting something of an unknown name does nothing.
class LogPrinter {
public:
    static constexpr const char* SingletonName = "Utilities::LogPrinter";

    /// A name that is there already gets the new device and keeps its filter, formatter and mask.
    void AddDevice(const std::string& name, ILogDevice* device);
    void RemoveDevice(const std::string& name);
    void SetFilter(const std::string& name, ILogFilter* filter);
    void SetFormatter(const std::string& name, ILogFormatter* formatter);
    /// A device prints levels that share a bit with its mask; at first it prints all.
    void SetMask(const std::string& name, std::uint32_t mask);
    void Print(unsigned level, const char* file, std::uint32_t line, const char* function, const char* text);

private:
    struct Record {
        ILogDevice* device = nullptr;
        ILogFilter* filter = nullptr;
        ILogFormatter* formatter = nullptr;
        std::uint32_t mask = 0xFFFFFFFF;
    };

    Record* Find(const std::string& name);

    Synchronization::CriticalSection m_section;
    std::list<Record> m_records;
    std::map<std::string, std::list<Record>::iterator> m_byName;
};

}  // namespace Utilities
