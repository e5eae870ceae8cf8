#include "HostMain.h"

#include <cstdlib>
#include <exception>

#include "Commands/CommandLine.h"
#include "Console/Supervisor.h"
#include "OSAL/Crash.h"

namespace TarnHost {
namespace {

ExitStatus FinishOutput(ExitStatus status, Console& console);

/// Runs the command, and ends the process itself where a thread of it can't be ended.
ExitStatus RunCommand(const Request& request, Console& console) {
    if (const auto refused = StartDiagnostics(request.diagnostics)) {
        console.Say(*refused);
        return Failed;
    }
    InterruptWatch watch;
    Context context{console, watch, request.host};
    const auto status = RunWatched(watch, [&]() -> ExitStatus {
        OSAL::PrepareCrashStack();
        try {
            return FinishOutput(
                std::visit([&](const auto& options) { return Execute(options, context); }, *request.command), console);
        } catch (const std::bad_alloc&) {
            console.Say("out of memory");
        } catch (const std::exception& error) {
            console.Say(std::string("internal error: ") + error.what());
        }
        return Failed;
    });
    if (!status) {
        Console own;  // the command's may be in use
        own.Say("interrupted");
        std::_Exit(watch.Status());
    }
    if (context.hasAbandoned) std::_Exit(*status);
    return *status;
}

ExitStatus RunRequest(const Request& request, Console& console) {
    if (request.command) return RunCommand(request, console);
    if (request.status == Success)
        console.out.Write(request.text);
    else
        console.Say(request.text);
    return FinishOutput(request.status, console);
}

/// What became of standard output decides last: data that didn't arrive is a failure, a reader that left isn't one to
/// talk about.
ExitStatus FinishOutput(ExitStatus status, Console& console) {
    console.out.Flush();
    if (console.out.IsReaderGone()) return ReaderGone;
    if (!console.out.Ok()) {
        console.Say("can't write to standard output: " + console.out.Error());
        return status == Success ? Failed : status;
    }
    return status;
}

}  // namespace

ExitStatus Refuse(const std::string& reason, Context& context, ExitStatus status) {
    context.console.Say(reason);
    return status;
}

ExitStatus CheckRadio(ExitStatus status, Context& context) {
    const auto trouble = quayCommand::RadioTrouble();
    if (!trouble) return status;
    context.console.Say(*trouble);
    return status == Success ? Failed : status;
}

int Main(std::vector<std::string> arguments) {
    OSAL::OccupyStandardStreams();
    Console console;
    return RunRequest(ParseArguments(std::move(arguments)), console);
}

}  // namespace TarnHost
