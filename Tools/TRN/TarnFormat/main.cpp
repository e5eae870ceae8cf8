#include <iostream>

#include "FormatTool.h"
#include "Streams/AppStreams.h"

namespace {

/// The frame's codes 256 to 259 don't fit where a status has eight bits: they become 252 to 255.
int StatusOf(std::int32_t code) {
    if (code >= Common::ExitCommandLine && code <= Common::ExitUnknownException) return code - 4;
    return code > Common::ExitUnknownException || code < 0 ? 255 : code;
}

}  // namespace

int main(int argc, char** argv) {
    auto& streams = *SingletonWrapper<Streams::AppStreams>::accessObject();
    streams.errorStream = streams.debugStream = &std::cerr;
    streams.outputStream = &std::cout;
    streams.inputStream = &std::cin;
    TarnFormat::FormatTool tool;
    const int status = StatusOf(tool.Run(argc, argv));
    std::cout.flush();
    return status == 0 && !std::cout ? 1 : status;
}
