// Puts string streams in the place of the process-wide streams for one test.
#pragma once

#include <sstream>

#include "Streams/AppStreams.h"

struct CapturedStreams {
    CapturedStreams() {
        streams.errorStream = &error;
        streams.outputStream = &output;
        streams.traceStream = &trace;
        streams.detailStream = &detail;
    }
    ~CapturedStreams() {
        streams.errorStream = streams.debugStream = streams.outputStream = nullptr;
        streams.detailStream = streams.traceStream = nullptr;
        streams.inputStream = nullptr;
        streams.debugMask = 0;
    }
    CapturedStreams(const CapturedStreams&) = delete;
    CapturedStreams& operator=(const CapturedStreams&) = delete;

    Streams::AppStreams& streams = *SingletonWrapper<Streams::AppStreams>::accessObject();
    std::ostringstream error, output, trace, detail;
};
