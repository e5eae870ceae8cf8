#include "HostMain.h"

#include <exception>

#include "Commands/CommandLine.h"

namespace TarnHost {
namespace {

ExitStatus RunRequest(const Request& request, Console& console) {
    if (request.command) {
        InterruptWatch watch;
        Context context{console, watch, request.host};
        return std::visit([&](const auto& options) { return Execute(options, context); }, *request.command);
    }
    if (request.status == Success)
        console.out.Write(request.text);
    else
        console.Say(request.text);
    return request.status;
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

ExitStatus Refuse(const Failure& failure, Context& context) {
    context.console.Say(failure.message);
    return failure.status;
}

ExitStatus CheckRadio(ExitStatus status, Context& context) {
    const auto trouble = quayCommand::RadioTrouble();
    if (!trouble) return status;
    context.console.Say(*trouble);
    return status == Success ? Failed : status;
}

int Main(std::vector<std::string> arguments) {
    OccupyStandardDescriptors();
    Console console;
    ExitStatus status = Failed;
    try {
        status = RunRequest(ParseArguments(std::move(arguments)), console);
    } catch (const std::exception& error) {
        console.Say(std::string("internal error: ") + error.what());
    }
    return FinishOutput(status, console);
}

}  // namespace TarnHost
