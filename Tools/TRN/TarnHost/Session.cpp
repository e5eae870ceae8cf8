#include "Session.h"

#include <new>

#include "Commands/Kernel.h"
#include "Guarded.h"
#include "OSAL/OSAL.h"
#include "Streams/AppStreams.h"

namespace TarnHost {
namespace {

using StreamsWrapper = SingletonWrapper<Streams::AppStreams>;

}  // namespace

std::optional<Failure> OpenLog(const std::string& path) {
    if (path.empty()) return std::nullopt;
    if (OSAL::IsLink(path)) return Failure{"the log file '" + path + "' is a link"};
    Streams::AppStreams::OpenLogFile(path, std::ios_base::app);
    const std::ostream* log = StreamsWrapper::accessObject()->logStream;
    if (log && log->good()) return std::nullopt;
    return Failure{"can't write the log file '" + path + "'"};
}

std::optional<Failure> OpenRadio(const quayCommand::RadioSetup& setup) {
    if (const auto reason = quayCommand::SetUpRadio(setup)) return Failure{*reason, NoAdapter};
    // asked of the description: a call on the radio would stand in the journal and count for the fault plan
    if (quayCommand::DescribeAdapter().find("connected=0") != std::string::npos)
        return Failure{"the adapter isn't connected", NoAdapter};
    return std::nullopt;
}

Session::Session(PluginLibrary library) : m_library(std::move(library)) {
    StreamsWrapper::accessObject()->errorStream = &m_errorStream;
}

Result<std::unique_ptr<Session>> Session::Open(const HostOptions& options, PluginVariant variant, Receiver& receiver) {
    if (auto failure = CheckKernel()) return *failure;
    if (auto failure = OpenLog(options.logPath)) return *failure;
    if (auto failure = OpenRadio(options.radio)) return *failure;
    auto library = PluginLibrary::Load();
    if (!library) return library.Why();
    std::unique_ptr<Session> session(new Session(std::move(*library)));
    if (auto failure = session->Start(variant, receiver)) return *failure;
    return session;
}

std::optional<Failure> Session::Start(PluginVariant variant, Receiver& receiver) {
    const std::string what = "can't start on this adapter";
    return Guarded(NoAdapter, what, [&] {
        m_plugin = m_library.Create(&receiver, variant.isFrontEnd);
        if (!m_plugin) throw std::bad_alloc();
        m_plugin->Init();
        m_isInitialised = true;
    });
}

Session::~Session() {
    // what fails on the way out has nobody left to tell
    if (m_plugin && m_isInitialised) Guarded(Failed, "", [this] { m_plugin->DeInit(); });
    if (m_plugin) Guarded(Failed, "", [this] { m_library.Destroy(); });
    StreamsWrapper::accessObject()->errorStream = nullptr;
}

Exchange Session::Run(const std::string& line, LineOptions options) {
    Exchange exchange;
    exchange.line = line;
    exchange.left = line;
    m_errorStream.str({});
    exchange.exitCode = m_plugin->RunCommand(exchange.left, exchange.output, exchange.error, options.plainOutput);
    exchange.warning = m_errorStream.str();
    return exchange;
}

}  // namespace TarnHost
