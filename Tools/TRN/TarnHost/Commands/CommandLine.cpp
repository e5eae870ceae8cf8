#include "Commands/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "ChannelPlan.h"
#include "Inputs.h"
#include "Lines/AirName.h"
#include "Lines/MeasureKeys.h"
#include "Lines/ShellQuote.h"
#include "Lines/Shorten.h"
#include "Lines/Suggest.h"
#include "Picture.h"
#include "PlainText.h"
#include "Report.h"

namespace TarnHost {
namespace {

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

std::string SceneNames() {
    std::string names;
    for (const std::string& name : quayCommand::ShippedSceneNames())
        names += (names.empty() ? "" : ", ") + name;
    return names;
}

void AddHostOptions(CLI::App& app, HostOptions& host) {
    app.add_option("--adapter", host.radio.adapter,
                   "The adapter: keys hw, card, device, antennas, sku, mac, bands, samples, seed, connected")
        ->type_name("KEY=VALUE,...");
    app.add_option("--air", host.radio.air,
                   "What the adapter hears: sim, sim:SCENE (a scene's file or name) or file:PATH (a sample file, or a "
                   "folder of them); scenes are " +
                       SceneNames())
        ->type_name("AIR");
    app.add_flag_callback(
        "--as-tuned", [&host] { host.radio.storedTuning = quayCommand::StoredTuning::AsTuned; },
        "Hear stored captures on any channel, width and chain, whatever their names say");
    static const std::map<std::string, quayCommand::Workload> workloads{
        {"auto", quayCommand::Workload::Auto}, {"off", quayCommand::Workload::Off}, {"on", quayCommand::Workload::On}};
    app.add_option_function<std::string>(
           "--workload", [&host](const std::string& text) { host.radio.workload = workloads.at(text); },
           "Whether a scene hears a load: on, off, or auto, which looks for the workload's process")
        ->check(CLI::IsMember({"auto", "on", "off"}).description(""))
        ->type_name("auto|on|off");
    app.add_option("--journal", host.radio.journalPath, "Write a line for each call on the radio")->type_name("FILE");
    app.add_option("--fault", host.radio.faults, "Make the n-th call of a radio operation fail")
        ->type_name("OPERATION:N,...");
    app.add_option("--log", host.logPath, "Append the trace of host and plug-in to a file")->type_name("FILE");
}

void AddDiagnosticOptions(CLI::App& app, DiagnosticOptions& options) {
    app.add_option("--publish", options.publishPath,
                   "Write a line of JSON for each operation, wait and exception; a FILE that ends in .json becomes a "
                   "trace for a browser's trace viewer")
        ->type_name("FILE");
    app.add_flag("--no-crash-report", options.noCrashReport, "Leave no report when the program crashes");
}

void AddAnalyse(CLI::App& app, AnalyseOptions& options) {
    auto* command = app.add_subcommand("analyse", "Channel power of each sample file in a folder");
    command->add_option("FOLDER", options.folder, "Folder with sample files; it gets result.csv")->required();
    command->add_flag("--force", options.overwrite, "Overwrite a result.csv that holds something else");
    command->footer(
        "A file name says how it was captured, each value between its key and the next \"_\":\n"
        "  BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt\n\n"
        "Examples:\n"
        "  tarn analyse captures\n"
        "  tarn analyse \"My captures\" | sort -k2\n"
        "  tarn --log trace.txt analyse captures");
}

void AddRun(CLI::App& app, RunOptions& options) {
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
}

void AddSimulate(CLI::App& app, SimulateOptions& options) {
    auto* command = app.add_subcommand("simulate", "Write captures of the adapter's air as sample files");
    command->add_option("FOLDER", options.folder, "Where the files go; made when it is missing")->required();
    command->add_option("--scene", options.scene, "The simulated air: a scene's file, or one of " + SceneNames())
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
}

void AddInfo(CLI::App& app, InfoOptions& options) {
    auto* command = app.add_subcommand("info", "Versions, adapter, air, kernel and paths");
    command->add_flag("--kernels", options.kernelsOnly, "Only the names of the kernels that this machine can run");
    command->footer(
        "Examples:\n"
        "  tarn info\n"
        "  tarn info --adapter hw=16,bands=0+1\n"
        "  TARN_KERNEL=portable tarn info");
}

/// Makes what a person typed into a key's own text, or says what it can be.
CLI::Validator Reader(OSAL::Outcome<std::string> (*read)(const std::string&)) {
    return CLI::Validator(
        [read](std::string& text) {
            const auto value = read(text);
            if (value) text = *value;
            return value ? std::string() : value.Reason();
        },
        "");
}

CLI::Validator RbwReader() {
    return CLI::Validator(
        [](std::string& text) {
            const auto value = TarnMeasure::ReadRbw(text);
            if (value) text = TarnMeasure::ShortText(*value);
            return value ? std::string() : value.Reason();
        },
        "");
}

CLI::Validator NotEmpty() {
    return {[](std::string& text) { return std::string(text.empty() ? "needs a value" : ""); }, ""};
}

/// A range alone takes "nan".
CLI::Validator NotNan() {
    return {[](std::string& text) {
                return std::string(std::isnan(std::strtod(text.c_str(), nullptr)) ? "'" + text + "' is no number" : "");
            },
            ""};
}

void AddLimit(CLI::App& command, std::string& limit, double& margin_db, const std::string& help) {
    command.add_option("--limit", limit, help)->type_name("FILE|LEVEL")->check(NotEmpty());
    command.add_option("--margin", margin_db, "Room to leave below the limit")
        ->type_name("DB")
        ->check(CLI::Range(0.0, 100.0))
        ->check(NotNan())
        ->capture_default_str();
}

void AddMeasure(CLI::App& app, MeasureOptions& options) {
    auto* command = app.add_subcommand("measure", "Measure channels: power, graphs, peaks, a picture");
    TarnMeasure::Request& request = options.request;
    command
        ->add_option("--band", request.band, "Band in GHz: 2.4, 5.2 or 6-7; without it the first that has the channels")
        ->type_name("GHZ")
        ->transform(Reader(TarnMeasure::ReadBand));
    command->add_option("--channel,--channels", request.channels, "Channel numbers such as 1,6,36-48, or all")
        ->type_name("LIST")
        ->check(NotEmpty());
    command
        ->add_option("--bandwidth", request.bandwidth,
                     "Channel width in MHz: " + TarnMeasure::Listed(RadioFacts::BandwidthChoices))
        ->type_name("MHZ")
        ->transform(Reader(TarnMeasure::ReadBandwidth))
        ->capture_default_str();
    command->add_option("--chain", request.chain, "Receive chain: A, B or AB")
        ->type_name("CHAIN")
        ->transform(Reader(TarnMeasure::ReadChain))
        ->capture_default_str();
    command->add_option("--rbw", request.rbw_khz, "Resolution bandwidth in kHz: 39.0625, 78.125, 156.25 or 312.5")
        ->type_name("KHZ")
        ->transform(RbwReader())
        ->capture_default_str();
    command->add_option("--sweeps", request.sweeps, "Sweeps of each channel")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    command->add_flag("--max-hold", request.maxHold, "Keep the largest value of each bin");
    command->add_flag("--average", request.average, "Average the sweeps: a mean of power");
    command->add_option("--peaks", request.peaks, "Peaks to report of each chain, 0 for none")
        ->check(CLI::Range(0, 10000))
        ->capture_default_str();
    command->add_option("--peak-excursion", request.peakExcursion_db, "How far a peak stands out of what is around it")
        ->type_name("DB")
        ->check(CLI::Range(0.5, 100.0))
        ->check(NotNan())
        ->capture_default_str();
    AddLimit(*command, options.limit, request.margin_db,
             "What no level may exceed: dBm over the channel, or a CSV file by band, channel or frequency");
    command
        ->add_option("--keys", request.setup,
                     "Further keys to run before the first channel, such as gain settings; keys that the options "
                     "above stand for are refused")
        ->type_name("LINE");
    command->add_option("--picture", options.picture, "Draw into a file that ends in .png, .svg or .pdf")
        ->type_name("FILE")
        ->check(NotEmpty());
    command->add_option("--csv", options.csv, "Write every bin into a CSV file, - for standard output")
        ->type_name("FILE")
        ->check(NotEmpty());
    command->add_flag("--json", options.json, "Print JSON instead of the table");
    command->footer(
        "Power is in dBm over the channel, graphs and peaks in dBm in one RBW. Ctrl-C keeps what was measured.\n"
        "Ends with status 4 when a level is above its limit, 1 when a channel couldn't be measured.\n\n"
        "Examples:\n"
        "  tarn measure --band 2.4 --channel 6\n"
        "  tarn measure --band 5.2 --channels all --bandwidth 80 --chain AB --picture scan.png\n"
        "  tarn measure --band 5.2 --channel 36 --rbw 78.125 --sweeps 50 --max-hold --average --peaks 5 --csv "
        "bins.csv\n"
        "  tarn measure --air sim:laptop --channel 6 --max-hold --json\n"
        "  tarn measure --channels 1-13 --limit -75 --margin 3");
}

void AddServe(CLI::App& app, ServeOptions& options) {
    auto* command = app.add_subcommand("serve", "The page and the API: the spectrum in a browser, lines over HTTP");
    command->add_option("--port", options.port, "Port, 0 for one that is free")->capture_default_str();
    command->add_option("--bind", options.address, "Numeric address; any but this machine's own needs a --token")
        ->type_name("ADDRESS")
        ->capture_default_str();
    command->add_option("--data", options.dataFolder, "Folder of all files that requests name; made when missing")
        ->type_name("FOLDER")
        ->capture_default_str();
    command
        ->add_option("--token", options.token,
                     "What clients must know, of letters, digits and -._~+/=; a browser opens ADDRESS?token=TEXT once")
        ->type_name("TEXT");
    command->footer(
        "Prints the address once the server is ready, and serves until Ctrl-C.\n\n"
        "Examples:\n"
        "  tarn serve\n"
        "  tarn serve --air sim:laptop --data measurements\n"
        "  tarn serve --bind 0.0.0.0 --token SECRET");
}

void AddVesper(CLI::App& app, VesperOptions& options) {
    auto* command = app.add_subcommand("vesper", "Burn-in desense test: noise of every channel under load");
    command->add_option("--config", options.request.config, "The test's nine lines KEY,VALUE")
        ->type_name("FILE")
        ->required();
    command
        ->add_option("--out", options.request.folder, "Folder for the report and the tables; made when it is missing")
        ->type_name("DIR")
        ->required();
    AddLimit(*command, options.limit, options.request.margin_db,
             "What no level in one resolution bandwidth may exceed: dBm, or a CSV file by band, channel or "
             "frequency; without it 3 dB above each band's reference");
    command->add_flag("--idle-baseline", options.request.idleBaseline, "Sweep without load first, and show the rise");
    command->add_option("--fail-on", options.failOn, "What ends with status 4")
        ->check(CLI::IsMember({"fail", "margin", "none"}))
        ->capture_default_str();
    command->footer(
        "Ctrl-C ends the load and keeps what was measured. Status 0: passed, 4: above a limit, 1: something went "
        "wrong, 130: interrupted.\n\n"
        "Examples:\n"
        "  tarn vesper --config test.cfg --out results\n"
        "  tarn --air sim:laptop vesper --config test.cfg --out results --idle-baseline");
}

void AddShell(CLI::App& app) {
    auto* command = app.add_subcommand("shell", "Type command lines, with completion, history and help");
    command->footer(
        "Type help inside to see how to begin.\n\n"
        "Examples:\n"
        "  tarn shell\n"
        "  tarn shell --air sim:quiet");
}

std::optional<std::string> WrongFiles(const MeasureOptions& options) {
    namespace fs = std::filesystem;
    if (options.csv == "-" && options.json) return "--csv - and --json both print on standard output";
    if (!options.picture.empty() && !TarnMeasure::IsPicturePath(options.picture))
        return "'" + options.picture + "': a picture's ending is .png, .svg or .pdf";
    std::error_code ignored;
    const auto place = [&](const std::string& path) { return fs::weakly_canonical(fs::absolute(path), ignored); };
    if (!options.picture.empty() && !options.csv.empty() && place(options.picture) == place(options.csv))
        return "--picture and --csv name the same file";
    return std::nullopt;
}

/// Names that an argument could have meant: options for one that begins like an option, commands for another.
std::vector<std::string> KnownNames(const CLI::App& app, const std::string& like) {
    std::vector<std::string> names;
    const bool isOption = like.starts_with('-');
    const auto chosen = app.get_subcommands();
    if (!isOption && chosen.empty())
        for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
            names.push_back(command->get_name());
    for (const CLI::App* source : {&app, chosen.empty() ? &app : static_cast<const CLI::App*>(chosen.front())})
        for (const CLI::Option* option : source->get_options())
            for (const std::string& name : option->get_lnames())
                if (isOption) names.push_back("--" + name);
    return names;
}

/// The reason as a person should see it: with the name that was meant, and without what could steer a terminal.
std::string UsageError(const CLI::App& app, std::string reason) {
    const auto chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
    std::erase(reason, verbatimMark);
    return TarnMeasure::Printable(Shortened(reason)) + " (tarn" + command + " --help tells more)";
}

std::string UsageError(const CLI::App& app, const CLI::ParseError& error) {
    const auto unknown = app.remaining(true);
    if (unknown.empty()) return UsageError(app, error.what());
    const std::string word = unknown.front().substr(0, unknown.front().find('='));
    return UsageError(app, error.what() + DidYouMean(word, KnownNames(app, word)));
}

/// The command with its options, or why they don't fit together.
class Choice {
public:
    AnalyseOptions analyse;
    RunOptions run;
    SimulateOptions simulate;
    InfoOptions info;
    MeasureOptions measure;
    ServeOptions serve;
    VesperOptions vesper;

    OSAL::Outcome<CommandOptions> Take(const std::string& command, const HostOptions& host);

private:
    OSAL::Outcome<CommandOptions> TakeMeasure();
};

OSAL::Outcome<CommandOptions> Choice::TakeMeasure() {
    if (const auto reason = WrongFiles(measure)) return OSAL::Refusal{*reason};
    const auto keys = ReadMeasureKeys(measure.request.setup);
    if (!keys) return keys.Why();
    measure.request.setup = keys->setup;
    measure.request.gainFile = keys->gainFile;
    return CommandOptions(measure);
}

OSAL::Outcome<CommandOptions> Choice::Take(const std::string& command, const HostOptions& host) {
    if (command == "analyse" && analyse.folder.empty()) return OSAL::Refusal{"the folder's name is empty"};
    if (command == "run" && run.lines.empty() && run.script.empty())
        return OSAL::Refusal{"run needs command lines behind --, or a --script"};
    if (command == "simulate" && !simulate.scene.empty() && !host.radio.air.empty())
        return OSAL::Refusal{"--scene and --air exclude each other"};
    if (command == "analyse") return CommandOptions(analyse);
    if (command == "run") return CommandOptions(run);
    if (command == "simulate") return CommandOptions(simulate);
    if (command == "info") return CommandOptions(info);
    if (command == "serve") return CommandOptions(serve);
    if (command == "vesper") return CommandOptions(vesper);
    return command == "measure" ? TakeMeasure() : CommandOptions(ShellOptions{});
}

}  // namespace

Request ParseArguments(std::vector<std::string> arguments) {
    Request request;
    CLI::App app("Spectrum analysis with the Wi-Fi adapter of a computer.", "tarn");
    app.set_version_flag("--version", std::string("tarn ") + TARN_VERSION);
    app.require_subcommand(0, 1);
    AddHostOptions(app, request.host);
    AddDiagnosticOptions(app, request.diagnostics);
    Choice choice;
    AddAnalyse(app, choice.analyse);
    AddRun(app, choice.run);
    AddSimulate(app, choice.simulate);
    AddInfo(app, choice.info);
    AddMeasure(app, choice.measure);
    AddServe(app, choice.serve);
    AddVesper(app, choice.vesper);
    AddShell(app);
    for (CLI::App* command : app.get_subcommands({}))
        command->fallthrough();
    app.footer("The options above may stand before or behind the command. Each command has a --help with examples.");

    choice.measure.command = choice.vesper.command = CommandText(arguments);
    MarkVerbatim(arguments);
    std::ranges::reverse(arguments);
    const auto refuse = [&](const std::string& reason) {
        request.text = reason;
        request.status = WrongUsage;
        return request;
    };
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
        return refuse(UsageError(app, error));
    }
    Unmark(choice.analyse.folder);
    Unmark(choice.simulate.folder);
    std::ranges::for_each(choice.run.lines, Unmark);
    const auto air = ReadAir(request.host.radio.air);
    if (!air) return refuse(UsageError(app, air.Reason()));
    request.host.radio.air = *air;

    const auto chosen = app.get_subcommands();
    if (chosen.empty()) {
        request.text = app.help();
        return request;
    }
    auto command = choice.Take(chosen.front()->get_name(), request.host);
    if (!command) return refuse(UsageError(app, command.Reason()));
    request.command = std::move(*command);
    return request;
}

}  // namespace TarnHost
