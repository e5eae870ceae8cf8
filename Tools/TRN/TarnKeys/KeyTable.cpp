#include "KeyTable.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "ChannelPlan.h"

namespace TarnKeys {
namespace {

constexpr auto Int = ArgumentKind::Int;
constexpr auto Double = ArgumentKind::Double;
constexpr auto Text = ArgumentKind::Text;
constexpr auto File = ArgumentKind::File;
constexpr auto Folder = ArgumentKind::Folder;
using enum KeyRole;

constexpr std::string_view Analysis = "Analysis";
constexpr std::string_view Look = "Results";
constexpr std::string_view Files = "Files";
constexpr std::string_view Setting = "Settings";
constexpr std::string_view Gain = "Gain and floor";
constexpr std::string_view Device = "Device";
constexpr std::string_view Run = "Measuring";
constexpr std::string_view Desense = "Burn-in desense test";

constexpr KeyArgument None{};
constexpr KeyArgument FlagText{Text, "FLAG", "true|false"};
constexpr KeyArgument FileName{File, "FILE"};
constexpr bool Spoils = true;
/// What the default configuration sets back.
constexpr std::string_view Tuning = "-band|-bandwidth|-channel|-chain|-gain_file_name";
/// What the plain variant's test leaves as its last sweep had it.
constexpr std::string_view TestTuning =
    "-band|-bandwidth|-channel|-chain|-rbw|-maxhold|-channel_average|-channel_average_sweep_val";

constexpr auto table = std::to_array<KeyRow>({
    {"-channel_average_sweep_val", Sets, {Int, "SWEEPS"}, Analysis, "sweeps of one averaging run, 1 to 100", Spoils},
    {"-maxhold", Sets, FlagText, Analysis, "keep the largest value of each bin; channel power is then taken from it",
     Spoils},
    {"-histogram", Sets, FlagText, Analysis, "count the ADC codes of each sweep in 20 buckets"},
    {"-frequency_compensation", Sets, FlagText, Analysis, "lift the receiver filter's edges back up"},
    {"-channel_average", Sets, FlagText, Analysis, "average sweeps; channel power is then taken from the average",
     Spoils},
    {"-get_channel_average", Tells, None, Analysis, "tell whether averaging is on"},
    {"-channel_average_counter",
     Acts,
     {Text, "N,N,N"},
     Analysis,
     "sweeps that each chain's average already holds, 0 to 99",
     Spoils},
    {"-update_spectrum", ReadsOut, None, Look, "last spectrum, dBm in each bin, a line a chain"},
    {"-update_iq", ReadsOut, None, Look, "last sweep's I and Q, ADC codes, two lines a chain"},
    {"-update_maxhold", ReadsOut, None, Look, "max hold of the channel, dBm in each bin, a line a chain"},
    {"-update_channel_average", ReadsOut, None, Look, "average, dBm in each bin, a line a chain"},
    {"-clear_average", Acts, None, Analysis, "start the average again", Spoils},
    {"-update_histogram", ReadsOut, None, Look, "counts of I and Q together, I, Q, then the range, four lines a chain"},
    {"-get_power_per_chain",
     ReadsOut,
     {Text, "CHAIN", "A|B"},
     Look,
     "channel power of one chain, dBm over the channel"},
    {"-save_spectrum", WritesFile, FileName, Files, "write the last spectrum"},
    {"-save_IQ", WritesFile, FileName, Files, "write the last sweep's samples"},
    {"-save_maxhold", WritesFile, FileName, Files, "write the max hold"},
    {"-get_supported_config", Tells, None, Device, "ids, versions and the channels this device supports"},
    {"-reset_config", Acts, None, Setting, "back to band 2.4, 20 MHz, channel 1, chain A", Spoils, Tuning},
    {"-band", Sets, {Text, "BAND", RadioFacts::BandChoices}, Setting, "band in GHz", Spoils, "-bandwidth|-channel"},
    {"-bandwidth",
     Sets,
     {Text, "MHZ", RadioFacts::BandwidthChoices},
     Setting,
     "channel width in MHz",
     Spoils,
     "-channel"},
    {"-channel", Sets, {Int, "NUMBER"}, Setting, "channel number in the band and at the width set", Spoils},
    {"-gain_file_name", Sets, FileName, Gain, "read a table of gains by device, chain, frequency and width"},
    {"-set_gain_from_file", Acts, None, Gain, "look the current setting up in the gain file and use it"},
    {"-reset_first_run_flags", Acts, None, Setting, "apply the next settings even where they don't change"},
    {"-internal_gain",
     Sets,
     {Int, "INDEX", "0|1|2|3|4|5"},
     Gain,
     "receiver gain index, 0 to 5; a higher index is less gain"},
    {"-preLNA_resistor", Sets, FlagText, Gain, "resistor before the low-noise amplifier"},
    {"-external_gain", Sets, FlagText, Gain, "outside amplifier; only false is supported on current adapters"},
    {"-chain", Sets, {Text, "CHAIN", "A|B|AB"}, Setting, "receive chain", Spoils},
    {"-rbw",
     Sets,
     {Double, "KHZ", "39.0625|78.125|156.25|312.5"},
     Setting,
     "resolution bandwidth in kHz: width of a bin",
     Spoils},
    {"-power_deembedding", Sets, FlagText, Gain, "take the noise floor off the channel power"},
    {"-noise_floor", Sets, {Text, "DB,DB,DB"}, Gain, "noise floor of each band in dBm, -160 to -1"},
    {"-save_rbw_power", WritesFile, FileName, Files, "write power and frequency of each bin of the channel"},
    {"-find_peaks", ReadsOut, {Int, "BINS"}, Look, "search peaks with slices of 5 to 80 bins"},
    {"-update_peaks", ReadsOut, None, Look, "found peaks: frequency in MHz and power"},
    {"-save_peaks", WritesFile, FileName, Files, "write the found peaks"},
    {"-save_all", WritesFile, FileName, Files, "write the whole measurement state as one table"},
    {"-load_all", Acts, FileName, Files, "bring a saved measurement state back", Spoils, Tuning},
    {"-read_adc_samples_from_file",
     Acts,
     {Folder, "FOLDER"},
     Files,
     "analyse stored sample files into result.csv",
     Spoils},
    {"-get_supported_channels", Tells, None, Device, "channels as a message for a front-end"},
    {"-get_supported_chains", Tells, None, Device, "chains as a message for a front-end"},
    {"-mcc_profile", Acts, {Text, "COUNTRY"}, Device, "two-letter country for the next -set_mcc"},
    {"-set_mcc", Acts, None, Device, "load the country's profile; resets the settings", Spoils, Tuning},
    {"-vesper_iterations", Sets, {Int, "SWEEPS"}, Desense, "sweeps of each channel and chain, 1 to 100", Spoils},
    {"-vesper_current_iteration",
     Acts,
     {Int, "NUMBER"},
     Desense,
     "iteration that the next trigger counts as; 1 clears max hold and average",
     Spoils},
    {"-clear_freq_power_data", Acts, None, Run, "forget the stored channel powers"},
    {"-get_platform_info", Tells, None, Device, "the computer that this runs on"},
    {"-set_chain_mode",
     Sets,
     {Text, "MODE", "A|B|AB|A->B"},
     Desense,
     "chains of the test: one, both at once, or A and then B",
     Spoils},
    {"-dump_vesper_data", WritesFile, FileName, Desense, "write average and maximum of every bin of the test"},
    {"-export_vesper_result", WritesFile, FileName, Desense, "write each channel's desense in dB and its spurs"},
    {"-vesper_disable_bit", Sets, FlagText, Desense, "run the test without its workload", Spoils},
    {"-vesper_get_channel_data",
     Tells,
     {Text, "CHANNEL,BAND"},
     Desense,
     "a channel's bins as a message for a front-end; band 0, 1 or 2"},
    {"-vesper_set_config_file", Sets, FileName, Desense, "settings of the test out of nine lines KEY,VALUE", Spoils},
    {"-vesper_set_delay", Sets, {Int, "SECONDS"}, Desense, "wait before the test starts, 0 to 100 s", Spoils},
    {"-vesper_save_test_messages", WritesFile, FileName, Desense, "write the test's messages"},
    {"-start_vesper_test", Acts, None, Desense, "start the workload and the test", Spoils, TestTuning},
    {"-stop_vesper_test", Acts, None, Desense, "end the test and its workload", Spoils},
    {"-resume_vesper_test", Acts, None, Desense, "start the workload again and go on with the test", Spoils},
    {"-trigger_now", Triggers, None, Run, "capture and analyse one sweep", Spoils},
    {"-export_freq_power", WritesFile, FileName, Files, "write the channel powers of all triggers as a table"},
});

bool SameLetters(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b,
                              [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

std::span<const KeyRow> Keys() {
    return table;
}

const KeyRow* FindKey(std::string_view name) {
    const auto row = std::ranges::find_if(table, [&](const KeyRow& key) { return SameLetters(key.name, name); });
    return row == table.end() ? nullptr : &*row;
}

bool ReadsBeforeTrigger(const KeyRow& key) {
    if (key.role != ReadsOut && key.role != WritesFile) return false;
    return &key < &*std::ranges::find(table, Triggers, &KeyRow::role);
}

}  // namespace TarnKeys
