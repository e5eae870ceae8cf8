// What a command needs before it can work: the log, the adapter, the plug-in; opened in this order, closed in reverse.
#pragma once

#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "Exchange.h"
#include "Outcome.h"
#include "PluginLibrary.h"
#include "RadioSetup.h"

namespace TarnHost {

/// The options that every command takes.
struct HostOptions {
    quayCommand::RadioSetup radio;
    std::string logPath;  ///< empty: no log
};

/// Opens the log file at its end, for host and plug-in.
std::optional<Failure> OpenLog(const std::string& path);

/// Makes the described adapter the one that host and plug-in get, and checks that it is connected.
std::optional<Failure> OpenRadio(const quayCommand::RadioSetup& setup);

/// Which of its two flow objects the plug-in makes.
struct PluginVariant {
    bool isFrontEnd = false;  ///< answers as JSON messages
};

/// How one line is run.
struct LineOptions {
    bool plainOutput = false;  ///< text answers from the front-end variant
};

/// An initialised plug-in. Thread: one thread at a time.
class Session {
public:
    /// @param receiver  gets what the plug-in sends; must outlive the session
    static Result<std::unique_ptr<Session>> Open(const HostOptions& options, PluginVariant variant, Receiver& receiver);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    Exchange Run(const std::string& line, LineOptions options = {});

    const std::string& PluginPath() const { return m_library.Path(); }

private:
    explicit Session(PluginLibrary library);
    std::optional<Failure> Start(PluginVariant variant, Receiver& receiver);

    PluginLibrary m_library;
    ITrellisPlugin* m_plugin = nullptr;
    bool m_isInitialised = false;
    std::ostringstream m_errorStream;
};

}  // namespace TarnHost
