// Shares the process-wide objects with the program that loads it.
#include "Streams/AppStreams.h"
#include "Streams/Trace.h"

extern "C" __attribute__((visibility("default"))) void WriteTraceOfPlugin() {
    TRACE_SCOPE("Plugin::Write");
    TRACE(Streams::TraceError, "from the plug-in");
}

extern "C" __attribute__((visibility("default"))) void* TouchStreams() {
    return SingletonWrapper<Streams::AppStreams>::accessObject();
}
