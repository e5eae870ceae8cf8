// All that a host sees of the plug-in.
#pragma once

#include <cstdint>
#include <string>

/// The plug-in as the host drives it: CreateInstance, Init, RunCommand any number of times, DeInit, DestroyInstance.
/// Thread: one thread at a time; RunCommand is not re-entrant.
class ITrellisPlugin {
public:
    /// Finds the adapter, builds the engine, brings the receiver to its default state.
    /// @throws std::exception when the hardware is unknown or the country profile is refused
    virtual void Init() = 0;

    /// Runs one line of keys. Nothing is thrown.
    /// @param line         in: the keys; out: what no key took, or the line as it was when a key's failure ended it
    /// @param output       out: the text answer, or "ERROR:" and the error
    /// @param error        out: the error text and a line end when an exception ended the line, else empty
    /// @param plainOutput  answers of the front-end variant come as text instead of JSON messages
    /// @return 0, or the exit code of the failure: 256 command line, 257 located message, 258 plain, 259 unknown
    virtual std::int32_t RunCommand(std::string& line, std::string& output, std::string& error, bool plainOutput) = 0;

    /// Waits for a running capture, then drops engine, capture object and keys.
    virtual void DeInit() = 0;

    virtual ~ITrellisPlugin() = default;
};

/// The host's side of the conversation. Every text is a copy of its own.
class IHostOutput {
public:
    /// One whole JSON message of the front-end variant.
    virtual void OutputObject(std::string text) = 0;
    virtual void Output(std::string text) = 0;
    virtual void OutputError(std::string text) = 0;

protected:
    ~IHostOutput() = default;
};

/// Names and types of the two exports, for a host that loads the library at run time.
extern "C" {
using CreateInstanceFunction = ITrellisPlugin*(IHostOutput* host, bool web);
using DestroyInstanceFunction = void();
}
