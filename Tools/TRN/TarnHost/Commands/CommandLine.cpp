#include "Commands/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "ChannelPlan.h"
#include "CmdLine/CmdLine.h"
#include "KeyTable.h"
#include "Picture.h"

namespace TarnHost {
namespace {

template <typename Table>
std::vector<std::string> NamesOf(const Table& table) {
    std::vector<std::string> names;
    for (const auto& row : table)
        names.emplace_back(row.name);
    return names;
}

/// Stands before each argument behind "--" while CLI11 parses: it would take such arguments for commands, or split
/// those in brackets.
constexpr char verbatimMark = '\x01';

void MarkVerbatim(std::vector<std::string>& arguments) {
    const auto mark = std::ranges::find(arguments, "--");
    for (auto argument = mark; argument != arguments.end(); ++argument) {
        if (argument != mark) argument->insert(argument->begin(), verbatimMark);
    }
}

void Unmark(std::string& argument) {
    if (argument.starts_with(verbatimMark)) argument.erase(0, 1);
}

void AddHostOptions(CLI::App& app, HostOptions& host) {
    app.add_option("--adapter", host.radio.adapter,
                   "The adapter: keys hw, card, device, antennas, sku, mac, bands, samples, seed, connected")
        ->type_name("KEY=VALUE,...");
    app.add_option("--air", host.radio.air,
                   "What the adapter hears: sim, sim:SCENE (a scene's file or name) or file:PATH (a sample file, or a "
                   "folder of them)")
        ->type_name("AIR");
    app.add_option("--journal", host.radio.journalPath, "Write a line for each call on the radio")->type_name("FILE");
    app.add_option("--fault", host.radio.faults, "Make the n-th call of a radio operation fail")
        ->type_name("OPERATION:N,...");
    app.add_option("--log", host.logPath, "Append the trace of host and plug-in to a file")->type_name("FILE");
}

CLI::App* AddAnalyse(CLI::App& app, AnalyseOptions& options) {
    auto* command = app.add_subcommand("analyse", "Channel power of each sample file in a folder");
    command->add_option("FOLDER", options.folder, "Folder with sample files; it gets result.csv")->required();
    command->footer(
        "A file name says how it was captured, each value between its key and the next \"_\":\n"
        "  BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt\n\n"
        "Examples:\n"
        "  tarn analyse captures\n"
        "  tarn analyse \"My captures\" | sort -k2\n"
        "  tarn --log trace.txt analyse captures");
    return command;
}

CLI::App* AddRun(CLI::App& app, RunOptions& options) {
    auto* command = app.add_subcommand("run", "Run command lines of the plug-in");
    command->add_flag("--web", options.isFrontEnd, "Front-end variant: answers are JSON messages");
    command->add_flag("--plain", options.plainOutput, "Text answers, also from the front-end variant");
    command->add_flag("--record", options.record, "Print everything that came back as one JSON object a command line");
    command->add_flag("--keep-going", options.keepGoing, "Go on behind a line that failed");
    auto* script = command
                       ->add_option("--script", options.script,
                                    "File with one command line a line, - for standard input; # begins a comment")
                       ->type_name("FILE");
    command->add_option("LINE", options.lines, "Command lines, behind --")->type_name("")->excludes(script);
    command->footer(
        "Examples:\n"
        "  tarn run -- \"-band 5.2 -bandwidth 80 -channel 42 -trigger_now\" \"-get_power_per_chain A\"\n"
        "  tarn run --record --keep-going --script lines.txt\n"
        "  echo \"-get_platform_info\" | tarn run --script -");
    return command;
}

CLI::App* AddSimulate(CLI::App& app, SimulateOptions& options) {
    auto* command = app.add_subcommand("simulate", "Write captures of the adapter's air as sample files");
    command->add_option("FOLDER", options.folder, "Where the files go; made when it is missing")->required();
    command->add_option("--scene", options.scene, "The simulated air: a scene's file, or the name of a shipped scene")
        ->type_name("FILE");
    command->add_option("--count", options.count, "Captures of each channel, width and chain")
        ->type_name("N")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
    command->add_flag("--force", options.overwrite, "Overwrite captures that exist already");
    command->footer(
        "Examples:\n"
        "  tarn simulate captures --scene office\n"
        "  tarn simulate captures --count 3 --adapter bands=0+1,antennas=1");
    return command;
}

CLI::App* AddInfo(CLI::App& app, InfoOptions& options) {
    auto* command = app.add_subcommand("info", "Versions, adapter, air, kernel and paths");
    command->add_flag("--kernels", options.kernelsOnly, "Only the names of the kernels that this machine can run");
    command->footer(
        "Examples:\n"
        "  tarn info\n"
        "  tarn info --adapter hw=16,bands=0+1\n"
        "  TARN_KERNEL=portable tarn info");
    return command;
}

CLI::App* AddMeasure(CLI::App& app, MeasureOptions& options) {
    auto* command = app.add_subcommand("measure", "Measure channels: power, graphs, peaks, a picture");
    TarnMeasure::Request& request = options.request;
    const auto notEmpty =
        CLI::Validator([](std::string& text) { return std::string(text.empty() ? "needs a value" : ""); }, "");
    command->add_option("--band", request.band, "Band in GHz")
        ->check(CLI::IsMember(NamesOf(RadioFacts::Bands)))
        ->capture_default_str();
    command->add_option("--channel,--channels", request.channels, "Channel numbers split by commas, or all")
        ->type_name("LIST")
        ->check(notEmpty);
    command->add_option("--bandwidth", request.bandwidth, "Channel width in MHz")
        ->check(CLI::IsMember(NamesOf(RadioFacts::Bandwidths)))
        ->capture_default_str();
    command->add_option("--chain", request.chain, "Receive chain")
        ->check(CLI::IsMember({"A", "B", "AB"}))
        ->capture_default_str();
    command->add_option("--rbw", request.rbw_khz, "Resolution bandwidth in kHz")
        ->check(CLI::IsMember({39.0625, 78.125, 156.25, 312.5}))
        ->capture_default_str();
    command->add_option("--sweeps", request.sweeps, "Sweeps of each channel")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    command->add_flag("--max-hold", request.maxHold, "Keep the largest value of each bin");
    command->add_flag("--average", request.average, "Average the sweeps, 100 at most");
    command->add_option("--peaks", request.peaks, "Peaks to report of each chain, 0 for none")
        ->check(CLI::Range(0, 10000))
        ->capture_default_str();
    command->add_option("--peak-window", request.peakWindow, "Bins of one slice of the peak search")
        ->check(CLI::Range(5, 80))
        ->capture_default_str();
    command
        ->add_option("--keys", request.setup,
                     "Further keys to run before the first channel, such as gain settings; keys that the options "
                     "above stand for are refused")
        ->type_name("LINE");
    command->add_option("--picture", options.picture, "Draw into a file that ends in .png, .svg or .pdf")
        ->type_name("FILE")
        ->check(notEmpty);
    command->add_option("--csv", options.csv, "Write every bin into a CSV file")->type_name("FILE")->check(notEmpty);
    command->add_flag("--json", options.json, "Print JSON instead of the table");
    command->footer(
        "Power is in dBm over the channel, graphs and peaks in dBm in one RBW. Ctrl-C keeps what was measured.\n\n"
        "Examples:\n"
        "  tarn measure --band 2.4 --channel 6\n"
        "  tarn measure --band 5.2 --channels all --bandwidth 80 --chain AB --picture scan.png\n"
        "  tarn measure --band 5.2 --channel 36 --rbw 78.125 --sweeps 50 --max-hold --average --peaks 5 --csv "
        "bins.csv\n"
        "  tarn measure --air sim:laptop --channel 6 --max-hold --json");
    return command;
}

CLI::App* AddShell(CLI::App& app) {
    auto* command = app.add_subcommand("shell", "Type command lines, with completion, history and help");
    command->footer(
        "Type help inside to see how to begin.\n\n"
        "Examples:\n"
        "  tarn shell\n"
        "  tarn shell --air sim:quiet");
    return command;
}

/// A key in the line of --keys that would make the results' labels wrong.
std::optional<std::string> ForbiddenKey(const std::string& line) {
    for (const std::string& token : CmdLine::Tokenize(line)) {
        const TarnKeys::KeyRow* key = TarnKeys::FindKey(token);
        if (key && key->spoilsMeasurement) return token;
    }
    return std::nullopt;
}

std::optional<std::string> WrongFiles(const MeasureOptions& options) {
    namespace fs = std::filesystem;
    if (!options.picture.empty() && !TarnMeasure::IsPicturePath(options.picture))
        return "'" + options.picture + "': a picture's ending is .png, .svg or .pdf";
    std::error_code ignored;
    const auto place = [&](const std::string& path) { return fs::weakly_canonical(fs::absolute(path), ignored); };
    if (!options.picture.empty() && !options.csv.empty() && place(options.picture) == place(options.csv))
        return "--picture and --csv name the same file";
    return std::nullopt;
}

std::string UsageError(const CLI::App& app, const std::string& reason) {
    const auto chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
    return reason + " (tarn" + command + " --help tells more)";
}

}  // namespace

Request ParseArguments(std::vector<std::string> arguments) {
    Request request;
    CLI::App app("Spectrum analysis with the Wi-Fi adapter of a computer.", "tarn");
    app.set_version_flag("--version", std::string("tarn ") + TARN_VERSION);
    app.require_subcommand(0, 1);
    AddHostOptions(app, request.host);
    AnalyseOptions analyse;
    RunOptions run;
    SimulateOptions simulate;
    InfoOptions info;
    MeasureOptions measure;
    const auto* analyseCommand = AddAnalyse(app, analyse);
    const auto* runCommand = AddRun(app, run);
    const auto* simulateCommand = AddSimulate(app, simulate);
    const auto* infoCommand = AddInfo(app, info);
    const auto* measureCommand = AddMeasure(app, measure);
    const auto* shellCommand = AddShell(app);
    for (CLI::App* command : app.get_subcommands({}))
        command->fallthrough();
    app.footer("The options above may stand before or behind the command. Each command has a --help with examples.");

    MarkVerbatim(arguments);
    std::ranges::reverse(arguments);
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        request.text = chosen.empty() ? app.help() : chosen.front()->help("tarn");
        return request;
    } catch (const CLI::CallForVersion&) {
        request.text = std::string("tarn ") + TARN_VERSION + "\n";
        return request;
    } catch (const CLI::ParseError& error) {
        request.text = UsageError(app, error.what());
        request.status = WrongUsage;
        return request;
    }
    Unmark(analyse.folder);
    Unmark(simulate.folder);
    std::ranges::for_each(run.lines, Unmark);

    const auto refuse = [&](const std::string& reason) {
        request.text = UsageError(app, reason);
        request.status = WrongUsage;
    };
    if (*analyseCommand && analyse.folder.empty()) {
        refuse("the folder's name is empty");
    } else if (*analyseCommand) {
        request.command = analyse;
    } else if (*runCommand && run.lines.empty() && run.script.empty()) {
        refuse("run needs command lines behind --, or a --script");
    } else if (*runCommand) {
        request.command = run;
    } else if (*simulateCommand && !simulate.scene.empty() && !request.host.radio.air.empty()) {
        refuse("--scene and --air exclude each other");
    } else if (*simulateCommand) {
        request.command = simulate;
    } else if (*infoCommand) {
        request.command = info;
    } else if (const auto key = ForbiddenKey(measure.request.setup); *measureCommand && key) {
        refuse("--keys: " + *key + " isn't for this line: the measurement itself sets what it sets");
    } else if (const auto reason = WrongFiles(measure); *measureCommand && reason) {
        refuse(*reason);
    } else if (*measureCommand) {
        request.command = measure;
    } else if (*shellCommand) {
        request.command = ShellOptions{};
    } else {
        request.text = app.help();
    }
    return request;
}

}  // namespace TarnHost
