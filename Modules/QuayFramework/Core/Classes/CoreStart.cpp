#include "CoreStart.h"

#include <optional>

#include "Format.h"
#include "ServiceDomain.h"
#include "Streams/LogPrinter.h"
#include "Streams/Streams.h"
#include "ValueFactory.h"

namespace Core {

namespace {

/// Prints what the start-up logs to the debugger, for as long as it lives.
class StartUpLog {
public:
    StartUpLog() {
        auto* printer = SingletonWrapper<Utilities::LogPrinter>::accessObject();
        printer->AddDevice(name, &m_device);
        printer->SetFormatter(name, &m_formatter);
        printer->SetMask(name, 15);
    }
    StartUpLog(const StartUpLog&) = delete;
    StartUpLog& operator=(const StartUpLog&) = delete;
    ~StartUpLog() { SingletonWrapper<Utilities::LogPrinter>::accessObject()->RemoveDevice(name); }

private:
    static constexpr const char* name = "stream";
    Streams::debug_ostream<char> m_stream;
    Utilities::StreamLogDevice m_device{&m_stream};
    Utilities::BriefLogFormatter m_formatter;
};

void RegisterBuiltInTypes(ValueFactory& factory) {
    factory.Register<int>("int");
    factory.Register<long>("long");
    factory.Register<short>("short");
    factory.Register<std::string>("string");
    factory.Register<double>("double");
    factory.Register<bool>("bool");
    factory.Register<unsigned char>("uint8");
    factory.Register<unsigned short>("uint16");
    factory.Register<unsigned int>("uint32");
    factory.Register<unsigned long long>("uint64");
    factory.Register<char>("int8");
    factory.Register<short>("int16");
    factory.Register<int>("int32");
    factory.Register<long long>("int64");
}

/// The started layer. The objects that it makes use of are older than it and outlive it.
class StartUp {
public:
    StartUp() {
        const StartUpLog log;
        Namespace& root = Namespace::Get();
        RegisterBuiltInTypes(ValueFactory::Instance());
        Utilities::FormatProviders::Instance().AddPreProcessor(&ExpandValueReferences);
        root.Add("Services", new ServiceDomain);
    }
    StartUp(const StartUp&) = delete;
    StartUp& operator=(const StartUp&) = delete;
    ~StartUp() { Utilities::FormatProviders::Instance().RemovePreProcessor(&ExpandValueReferences); }
};

/// The text of a value object; nothing for an object that is no value.
std::optional<std::string> ValueText(const IInterface* object) {
    if (const auto* handle = dynamic_cast<const Value*>(object)) return handle->ToString();
    if (const auto* value = dynamic_cast<const IValue*>(object)) return value->ToString();
    return std::nullopt;
}

}  // namespace

bool Start() {
    static const StartUp started;
    return true;
}

void ExpandValueReferences(std::string& text) {
    std::size_t start = std::string::npos;
    while ((start = text.rfind("$(", start)) != std::string::npos) {
        const std::size_t end = text.find(')', start);
        const std::size_t length = end == std::string::npos ? end : end - start - 2;
        const std::string name = text.substr(start + 2, length);
        const Namespace& root = Namespace::Get();
        if (const auto value = ValueText(root.Find(name)))
            text.replace(start, end == std::string::npos ? end : end - start + 1, *value);
        if (start == 0) return;
        --start;
    }
}

}  // namespace Core
