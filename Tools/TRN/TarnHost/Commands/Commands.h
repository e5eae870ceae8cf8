// The commands of the program, each in a file of its own.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "Console/InterruptWatch.h"
#include "Console/Terminal.h"
#include "Desense.h"
#include "Measurement.h"
#include "RadioSetup.h"

namespace TarnHost {

/// The options that every command takes.
struct HostOptions {
    quayCommand::RadioSetup radio;
    std::string logPath;  ///< empty: no log
};

/// What every command works with.
struct Context {
    Console& console;
    InterruptWatch& watch;
    HostOptions options;
    bool hasAbandoned = false;  ///< a line runs on in the plug-in: the process ends without looking back
};

struct AnalyseOptions {
    std::string folder;
    bool overwrite = false;  ///< also a result.csv that holds something else
};

struct RunOptions {
    std::vector<std::string> lines;
    std::string script;  ///< a file, or "-"; empty: `lines` are run
    bool isFrontEnd = false;
    bool plainOutput = false;
    bool record = false;
    bool keepGoing = false;
};

struct SimulateOptions {
    std::string folder;
    std::string scene;  ///< scene file or name of a shipped scene; empty: the air of the common options
    unsigned count = 1;
    bool overwrite = false;
};

struct InfoOptions {
    bool kernelsOnly = false;
};

struct MeasureOptions {
    TarnMeasure::Request request;
    std::string picture;  ///< .png, .svg or .pdf; empty: none
    std::string csv;      ///< "-" for standard output; empty: none
    std::string limit;    ///< a level or a file; empty: none
    std::string command;  ///< the program's arguments, as a shell takes them
    bool json = false;    ///< JSON instead of the table
};

struct ServeOptions {
    std::string address = "127.0.0.1";
    std::uint16_t port = 8731;  ///< 0: one that is free
    std::string token;          ///< that clients must know; empty: none
    std::string dataFolder = "tarn-data";
};

struct VesperOptions {
    TarnMeasure::DesenseRequest request;
    std::string limit;            ///< a level or a file; empty: the usual ones
    std::string failOn = "fail";  ///< "fail", "margin" or "none"
    std::string command;          ///< the program's arguments, as a shell takes them
};

struct ShellOptions {};

using CommandOptions = std::variant<AnalyseOptions, RunOptions, SimulateOptions, InfoOptions, MeasureOptions,
                                    VesperOptions, ServeOptions, ShellOptions>;

/// Analyses a folder of sample files and prints the table of results.
ExitStatus Execute(const AnalyseOptions& options, Context& context);
/// Hands command lines to the plug-in and prints its answers.
ExitStatus Execute(const RunOptions& options, Context& context);
/// Writes captures of the adapter's air as sample files.
ExitStatus Execute(const SimulateOptions& options, Context& context);
/// Prints versions, adapter, air, kernel, paths.
ExitStatus Execute(const InfoOptions& options, Context& context);
/// Measures channels and shows table, picture and files.
ExitStatus Execute(const MeasureOptions& options, Context& context);
/// Serves page and API until a signal.
ExitStatus Execute(const ServeOptions& options, Context& context);
/// Runs the burn-in desense test and leaves its files in a folder.
ExitStatus Execute(const VesperOptions& options, Context& context);
/// Reads lines from a person and runs them.
ExitStatus Execute(const ShellOptions& options, Context& context);

/// Says why a command ends early. @return `status`
ExitStatus Refuse(const std::string& reason, Context& context, ExitStatus status = Failed);

/// Looks once more at the radio when a command is done: a radio in trouble turns success into failure.
ExitStatus CheckRadio(ExitStatus status, Context& context);

}  // namespace TarnHost
