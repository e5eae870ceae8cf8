#include "KeyTable.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace TarnKeys {
namespace {

constexpr auto None = ArgumentType::None;
constexpr auto Int = ArgumentType::Int;
constexpr auto Double = ArgumentType::Double;
constexpr auto Text = ArgumentType::Text;

constexpr std::string_view Analysis = "Analysis";
constexpr std::string_view Look = "Results";
constexpr std::string_view File = "Files";
constexpr std::string_view Setting = "Settings";
constexpr std::string_view Gain = "Gain and floor";
constexpr std::string_view Device = "Device";
constexpr std::string_view Run = "Measuring";

constexpr std::string_view Flag = "true|false";

constexpr auto table = std::to_array<KeyRow>({
    {"-channel_average_sweep_val", Int, "SWEEPS", "", Analysis, "sweeps of one averaging run, 1 to 100"},
    {"-maxhold", Text, "FLAG", Flag, Analysis,
     "keep the largest value of each bin; channel power is then taken from it"},
    {"-histogram", Text, "FLAG", Flag, Analysis, "count the ADC codes of each sweep in 20 buckets"},
    {"-frequency_compensation", Text, "FLAG", Flag, Analysis, "lift the receiver filter's edges back up"},
    {"-channel_average", Text, "FLAG", Flag, Analysis, "average sweeps; channel power is then taken from the average"},
    {"-get_channel_average", None, "", "", Analysis, "tell whether averaging is on"},
    {"-channel_average_counter", Text, "N,N,N", "", Analysis,
     "sweeps that each chain's average already holds, 0 to 99"},
    {"-update_spectrum", None, "", "", Look, "last spectrum, dBm in each bin, a line a chain"},
    {"-update_iq", None, "", "", Look, "last sweep's I and Q, ADC codes, two lines a chain"},
    {"-update_maxhold", None, "", "", Look, "max hold of the channel, dBm in each bin, a line a chain"},
    {"-update_channel_average", None, "", "", Look, "average, dBm in each bin, a line a chain"},
    {"-clear_average", None, "", "", Analysis, "start the average again"},
    {"-update_histogram", None, "", "", Look, "counts of I and Q together, I, Q, then the range, four lines a chain"},
    {"-get_power_per_chain", Text, "CHAIN", "A|B", Look, "channel power of one chain, dBm over the channel"},
    {"-save_spectrum", Text, "FILE", "", File, "write the last spectrum"},
    {"-save_IQ", Text, "FILE", "", File, "write the last sweep's samples"},
    {"-save_maxhold", Text, "FILE", "", File, "write the max hold"},
    {"-get_supported_config", None, "", "", Device, "ids, versions and the channels this device supports"},
    {"-reset_config", None, "", "", Setting, "back to band 2.4, 20 MHz, channel 1, chain A"},
    {"-band", Text, "BAND", "2.4|5.2|6-7", Setting, "band in GHz"},
    {"-bandwidth", Text, "MHZ", "20|40|80|160|320", Setting, "channel width in MHz"},
    {"-channel", Int, "NUMBER", "", Setting, "channel number in the band and at the width set"},
    {"-gain_file_name", Text, "FILE", "", Gain, "read a table of gains by device, chain, frequency and width"},
    {"-set_gain_from_file", None, "", "", Gain, "look the current setting up in the gain file and use it"},
    {"-reset_first_run_flags", None, "", "", Setting, "apply the next settings even where they don't change"},
    {"-internal_gain", Int, "INDEX", "0|1|2|3|4|5", Gain, "receiver gain index, 0 to 5; a higher index is less gain"},
    {"-preLNA_resistor", Text, "FLAG", Flag, Gain, "resistor before the low-noise amplifier"},
    {"-external_gain", Text, "FLAG", Flag, Gain, "outside amplifier; only false is supported on current adapters"},
    {"-chain", Text, "CHAIN", "A|B|AB", Setting, "receive chain"},
    {"-rbw", Double, "KHZ", "39.0625|78.125|156.25|312.5", Setting, "resolution bandwidth in kHz: width of a bin"},
    {"-power_deembedding", Text, "FLAG", Flag, Gain, "take the noise floor off the channel power"},
    {"-noise_floor", Text, "DB,DB,DB", "", Gain, "noise floor of each band in dBm, -160 to -1"},
    {"-save_rbw_power", Text, "FILE", "", File, "write power and frequency of each bin of the channel"},
    {"-find_peaks", Int, "BINS", "", Look, "search peaks with slices of 5 to 80 bins"},
    {"-update_peaks", None, "", "", Look, "found peaks: frequency in MHz and power"},
    {"-save_peaks", Text, "FILE", "", File, "write the found peaks"},
    {"-read_adc_samples_from_file", Text, "FOLDER", "", File, "analyse stored sample files into result.csv"},
    {"-get_supported_channels", None, "", "", Device, "channels as a message for a front-end"},
    {"-get_supported_chains", None, "", "", Device, "chains as a message for a front-end"},
    {"-mcc_profile", Text, "COUNTRY", "", Device, "two-letter country for the next -set_mcc"},
    {"-set_mcc", None, "", "", Device, "load the country's profile; resets the settings"},
    {"-clear_freq_power_data", None, "", "", Run, "forget the stored channel powers"},
    {"-get_platform_info", None, "", "", Device, "the computer that this runs on"},
    {"-trigger_now", None, "", "", Run, "capture and analyse one sweep"},
    {"-export_freq_power", Text, "FILE", "", File, "write the channel powers of all triggers as a table"},
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

}  // namespace TarnKeys
