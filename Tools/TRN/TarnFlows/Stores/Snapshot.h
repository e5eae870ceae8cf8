// The stored measurement state: one wide table of text, read and written through one list of fields. Arrays run down
// its columns, three a field (one a chain), and the settings run down its last column beside them as NAME=VALUE.
// docs/formats.md draws the file.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LumenSA.h"
#include "OSAL/Outcome.h"
#include "QuayCommands.h"
#include "Stores/FreqPowerStore.h"

/// The columns of one field.
struct SavedArray {
    std::uint32_t length = 0;                  ///< cells of each chain
    std::vector<std::vector<double>> buffers;  ///< one for each chain, zeros at first

    /// As the engine takes them.
    std::vector<double*> Pointers();
};

/// By field name; a map's order is the order in the file.
using SavedArrays = std::map<std::string, SavedArray>;

/// One cell of the settings' column.
struct SavedValue {
    std::string name;
    double value = 0.0;
};

namespace Snapshot {

/// Lines of the power fields: channel lines from here on have no cell.
constexpr std::int32_t ChannelLines = 209;
/// What a snapshot may ask for; a capture has at most 4194304 samples and a spectrum 8192 bins.
constexpr std::uint32_t MaxSamples = 1u << 22;
constexpr double MaxBins = 65536;

/// The settings, in the order of their lines.
enum Place : std::size_t {
    NumChains,
    SampleRate,
    Rbw,
    NumOfSamples,
    AverageSweepsValue,
    ChannelAverageCounter,
    IsAverage,
    IsMaxHold,
    SweepLen,
    Band,
    Bandwidth,
    CurrChain,
    CurrChannelIndex,
    CurrChannelNumber,
    CurrChannelFrequency,
    NoiseFloorLowBand,
    NoiseFloorHighBand,
    NoiseFloorUltraHighBand,
    InternalLnaGain,
    IsPreLnaResistor,
    PlaceCount
};

/// What the settings are taken from and given to.
struct Subject {
    LumenSpectrumAnalyzer::CLmnSA& engine;
    quayCommand::GainConfig& gain;
};

/// One setting: its name in the file, how its text is read, and where it lives.
struct Setting {
    std::string_view name;
    double (*parse)(std::string_view text);  ///< throws the standard conversions' failures
    double (*get)(const Subject& subject);
    void (*put)(const Subject& subject, double value);  ///< throws Common::Exception for a value that can't be
};
/// By Place.
std::span<const Setting> Settings();

/// The engine's settings and the gain as they are, for a load that fails.
class Before {
public:
    explicit Before(const Subject& subject);
    void GiveBack(const Subject& subject) const;
    /// What tells of the sweep alone: chains and lengths.
    void GiveBackSweep(LumenSpectrumAnalyzer::CLmnSA& engine) const;

private:
    std::int32_t m_chains;
    std::uint32_t m_samples;
    std::uint32_t m_sweepLen;
    double m_sampleRate;
    double m_rbw;
    std::int32_t m_averageSweeps;
    std::array<std::uint32_t, LumenSpectrumAnalyzer::CLmnSA::MaxChains> m_averageCounters;
    std::map<LumenSpectrumAnalyzer::LmnSAProperty, bool> m_properties;
    std::uint32_t m_band;
    std::int32_t m_bandwidth;
    std::string m_chainName;
    std::uint32_t m_channelIndex;
    std::int32_t m_channels;
    double m_channel;
    double m_centre;
    std::array<std::int32_t, 3> m_noiseFloors;
    quayCommand::GainConfig m_gain;
};

/// All fields with zeros, sized by the engine.
SavedArrays MakeArrays(LumenSpectrumAnalyzer::CLmnSA& engine);

/// Copies the engine's results into the arrays; without a sweep they stay zero. Average and max hold only where they
/// are on. `ranges` gets (minimum, maximum) of each chain's histogram.
void TakeResults(LumenSpectrumAnalyzer::CLmnSA& engine, SavedArrays& arrays,
                 std::vector<std::pair<double, double>>& ranges);
/// The way back. The samples stay out: the engine has none until the next capture.
void GiveResults(LumenSpectrumAnalyzer::CLmnSA& engine, SavedArrays& arrays,
                 const std::vector<std::pair<double, double>>& ranges);

/// Last power of each channel and chain into the power fields.
/// @return how many entries have no line
int TakePowers(const FreqPowerStore& store, SavedArrays& arrays);
/// The way back: the store then holds these powers alone, without times.
void GivePowers(const SavedArrays& arrays, FreqPowerStore& store);

/// The whole file.
std::string ToText(const SavedArrays& arrays, std::span<const SavedValue> values);
/// The text behind NAME= on the line of each name, in their order; nothing for a line that isn't there or has another
/// name on it.
std::vector<std::optional<std::string>> ReadValues(std::string_view text, std::span<const std::string_view> names);
/// Fills the cells that the file has. Throws the standard conversions' failures for a cell that is no number.
void ReadArrays(std::string_view text, SavedArrays& arrays);

/// The file in one piece. A pipe, a folder, or a file of more than 1 GiB is refused.
OSAL::Outcome<std::string> ReadFile(const std::string& path);

/// @throws Common::Exception when the engine's settings ask for buffers that no measurement has
void CheckBuffers(const LumenSpectrumAnalyzer::CLmnSA& engine);

}  // namespace Snapshot
