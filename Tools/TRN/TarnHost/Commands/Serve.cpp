#include <chrono>
#include <thread>

#include "Commands/Commands.h"
#include "Server.h"

namespace TarnHost {

ExitStatus Execute(const ServeOptions& options, Context& context) {
    using namespace std::chrono_literals;
    TarnServe::ServerOptions server;
    server.session.radio = context.options.radio;
    server.session.logPath = context.options.logPath;
    server.address = options.address;
    server.port = options.port;
    server.token = options.token;
    server.dataFolder = options.dataFolder;
    const auto opened = TarnServe::Server::Open(server);
    if (!opened) return Refuse(opened.Reason(), context);
    context.console.out.Write(opened.Value()->Address() + "\n");
    context.console.out.Flush();
    if (!context.console.out.Ok()) return Failed;

    const std::jthread stopper([&](const std::stop_token& stop) {
        while (!stop.stop_requested() && !context.watch.IsRequested())
            std::this_thread::sleep_for(20ms);
        context.watch.Forget();  // what clients still get may take its time; a second signal doesn't wait for it
        opened.Value()->Stop();
    });
    opened.Value()->Run();
    context.hasAbandoned = opened.Value()->HasAbandoned();
    context.watch.Forget();  // an end that was asked for is a good one
    return Success;
}

}  // namespace TarnHost
