// An initialised plug-in on a thread of its own: lines go in through a bounded queue, exchanges come back.
//
// No terminal, no signal, no network: whoever sits on it brings those.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "AdapterFacts.h"
#include "Exchange.h"
#include "OSAL/Outcome.h"
#include "RadioSetup.h"

namespace TarnSession {

struct Options {
    quayCommand::RadioSetup radio;
    std::string logPath;           ///< empty: no log
    bool isFrontEnd = false;       ///< the variant whose answers are JSON messages
    std::size_t queueLength = 64;  ///< lines that may wait
};

/// The steps of opening a session, in their order.
enum class Step { Kernel, Log, Radio, Plugin, Start };

/// Opens the log file at its end, for host and plug-in. Nothing happens with an empty path.
OSAL::Outcome<> OpenLog(const std::string& path);

/// Makes the described adapter the one that host and plug-in get, and checks that it is connected.
OSAL::Outcome<> OpenRadio(const quayCommand::RadioSetup& setup);

/// One session at a time in a process, for there is one plug-in and one adapter.
/// Thread: every operation from any thread but the plug-in's own, unless it says otherwise.
class Session {
public:
    /// Checks the kernel, opens log, adapter and plug-in, and starts the plug-in.
    /// @param sink    gets what the plug-in sends; must outlive the session
    /// @param onStep  told each step before it begins; called on the plug-in's thread
    static OSAL::Outcome<std::unique_ptr<Session>> Open(const Options& options, ISink& sink,
                                                        std::function<void(Step)> onStep = {});
    /// Waits for the running line, drops those that wait (their `done` never comes), and ends the plug-in.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    using Done = std::function<void(Exchange)>;
    /// Hands a line over, to be run behind those that wait. Refused when the queue is full.
    /// @param done  gets the exchange, on the plug-in's thread; may post further lines, and must not wait for one
    OSAL::Outcome<> Post(std::string line, LineOptions options, Done done);
    /// Runs a line behind those that wait, and waits for it however full the queue is.
    Exchange Run(const std::string& line, LineOptions options = {});

    /// The line that runs.
    std::optional<std::string> Busy() const;
    /// Lines that wait.
    std::size_t Waiting() const;

    /// The adapter's facts; asks the plug-in for them with a line of its own, so it waits as Run does.
    OSAL::Outcome<AdapterFacts> Adapter();
    /// What the adapter hears, in a few words for a person.
    std::string AirText() const;
    /// Tells the air, between two lines, that a stress workload runs on the machine, or no longer does.
    /// @return false when the air has no use for it
    bool SetWorkload(bool running);
    /// Why the radio stopped being usable though no line failed, such as a journal that can't be written.
    std::optional<std::string> RadioTrouble() const;

    /// File of the plug-in.
    const std::string& PluginPath() const;

    /// Gives up a line that doesn't end: its `done` never comes, the sink hears nothing more, and the session's end
    /// doesn't wait. The plug-in's thread runs on, so the process has to end by std::_Exit().
    void Abandon();

private:
    class Worker;
    explicit Session(std::shared_ptr<Worker> worker);

    std::shared_ptr<Worker> m_worker;  ///< shared with its thread, which may outlive the session
};

}  // namespace TarnSession
