#include "Stores/Snapshot.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "Device/ChannelDatabase.h"
#include "Exceptions.h"
#include "Format.h"
#include "OSAL/Files.h"
#include "Support/FlowText.h"
#include "Support/NumberText.h"

using LumenSpectrumAnalyzer::CLmnSA;
using LumenSpectrumAnalyzer::LmnSAProperty;

std::vector<double*> SavedArray::Pointers() {
    std::vector<double*> pointers;
    for (std::vector<double>& buffer : buffers)
        pointers.push_back(buffer.data());
    return pointers;
}

namespace Snapshot {

namespace {

enum class Length { Bins, Samples, Range, Buckets, Lines };

struct ArrayField {
    std::string_view name;
    Length length;
};
constexpr auto ArrayFields = std::to_array<ArrayField>({
    {"m_Average", Length::Bins},
    {"m_HistMinMax", Length::Range},
    {"m_Histogram", Length::Buckets},
    {"m_HistogramI", Length::Buckets},
    {"m_HistogramQ", Length::Buckets},
    {"m_ISweep", Length::Samples},
    {"m_MaxHold", Length::Bins},
    {"m_QSweep", Length::Samples},
    {"m_Spectrum", Length::Bins},
    {"m_freqPowerChainsAFreqs", Length::Lines},
    {"m_freqPowerChainsBFreqs", Length::Lines},
    {"m_freqPowerChannels", Length::Lines},
});
static_assert(std::ranges::is_sorted(ArrayFields, {}, &ArrayField::name), "a map's order is the file's");

constexpr std::string_view ValuesHeading = "nonArrayFieldsAndValues";
constexpr const char* NotMeasured = "None";
constexpr std::array<const char*, 2> PowerFields{"m_freqPowerChainsAFreqs", "m_freqPowerChainsBFreqs"};

std::uint32_t LengthOf(Length length, const CLmnSA& engine) {
    switch (length) {
        case Length::Bins:
            return engine.m_NumOfBins;
        case Length::Samples:
            return engine.m_NumOfSamples;
        case Length::Range:
            return 3;
        case Length::Buckets:
            return CLmnSA::HistogramBuckets;
        case Length::Lines:
            break;
    }
    return ChannelLines;
}

double Whole(std::string_view text) {
    return FlowText::TextToInt(text);
}

[[noreturn]] void Refuse(std::string_view name, double value) {
    throw Common::Exception(Common::Format("the snapshot's ${1} can't be ${2}") % std::string(name) % value);
}

/// `value` as a whole number; refused outside the limits.
template <typename Number>
Number Within(std::string_view name, double value, Number low, Number high) {
    if (!(value >= low && value <= high)) Refuse(name, value);
    return static_cast<Number>(value);
}

double Property(const Subject& subject, LmnSAProperty property) {
    return subject.engine.GetProperty(property) ? 1 : 0;
}

// The three noise floors differ in their band alone.
template <std::size_t band>
double NoiseFloor(const Subject& subject) {
    return subject.engine.m_BandNoiseFloor[band];
}
template <std::size_t band>
void PutNoiseFloor(const Subject& subject, double value) {
    subject.engine.m_BandNoiseFloor[band] = static_cast<std::int32_t>(value);
}

void PutBandwidth(const Subject& subject, double value) {
    const auto mhz = static_cast<std::int32_t>(value);
    const std::uint32_t number = ChannelDatabase::BandwidthValueToEnum(mhz);
    if (ChannelDatabase::BandwidthEnumToValue(number) != std::to_string(mhz)) Refuse("m_Bandwidth", value);
    subject.engine.m_Bandwidth = mhz;
}

void PutRate(const Subject& subject, double value) {
    if (!(value > 0.0 && value <= 1e6)) Refuse("m_sampleRate", value);
    subject.engine.m_SampleRate = value;
}

void PutRbw(const Subject& subject, double value) {
    if (!(value > 0.0 && value <= 1e6)) Refuse("m_RBW", value);
    subject.engine.m_RBW = value;
}

// clang-format off
constexpr std::array<Setting, PlaceCount> SettingRows{{
    {"m_NumChains", Whole, [](const Subject& s) -> double { return s.engine.m_NumChains; },
     [](const Subject& s, double v) { s.engine.m_NumChains = Within("m_NumChains", v, 0, int{CLmnSA::MaxChains}); }},
    {"m_sampleRate", FlowText::TextToDouble, [](const Subject& s) { return s.engine.m_SampleRate; }, PutRate},
    {"m_RBW", FlowText::TextToDouble, [](const Subject& s) { return s.engine.m_RBW; }, PutRbw},
    {"m_NumOfSamples", Whole, [](const Subject& s) -> double { return s.engine.m_NumOfSamples; },
     [](const Subject& s, double v) { s.engine.m_NumOfSamples = Within("m_NumOfSamples", v, 0u, MaxSamples); }},
    {"m_averageSweepsValue", Whole, [](const Subject& s) -> double { return s.engine.m_AverageSweepsVal; },
     [](const Subject& s, double v) { s.engine.m_AverageSweepsVal = static_cast<std::int32_t>(v); }},
    {"m_ChannelAverageCounter", Whole, [](const Subject& s) -> double { return s.engine.m_ChannelAverageCounter[0]; },
     [](const Subject& s, double v) {
         s.engine.m_ChannelAverageCounter.fill(Within("m_ChannelAverageCounter", v, 0u, 0x7FFFFFFFu));
     }},
    {"m_isAverage", Whole, [](const Subject& s) { return Property(s, LmnSAProperty::Average); },
     [](const Subject& s, double v) { s.engine.SetProperty(LmnSAProperty::Average, v != 0); }},
    {"m_isMaxHold", Whole, [](const Subject& s) { return Property(s, LmnSAProperty::MaxHold); },
     [](const Subject& s, double v) { s.engine.SetProperty(LmnSAProperty::MaxHold, v != 0); }},
    {"m_SweepLen", Whole, [](const Subject& s) -> double { return s.engine.m_SweepLen; },
     [](const Subject& s, double v) { s.engine.m_SweepLen = Within("m_SweepLen", v, 0u, 2 * MaxSamples); }},
    {"m_band", Whole, [](const Subject& s) -> double { return s.engine.m_Band; },
     [](const Subject& s, double v) {
         if (v >= 0 && v < RadioFacts::BandCount) s.engine.m_Band = static_cast<std::uint32_t>(v);
     }},
    {"m_Bandwidth", Whole, [](const Subject& s) -> double { return s.engine.m_Bandwidth; }, PutBandwidth},
    {"m_currChain", Whole,
     [](const Subject& s) -> double { return ChannelDatabase::ConvertChainStringToU32(s.engine.m_ChainName); },
     [](const Subject& s, double v) {
         s.engine.m_ChainName = ChannelDatabase::ConvertChainU32ToString(Within("m_currChain", v, 1u, 3u));
     }},
    {"m_currChannelIndex", Whole, [](const Subject& s) -> double { return s.engine.m_ChannelIndex; },
     [](const Subject& s, double v) {
         s.engine.m_ChannelIndex = Within("m_currChannelIndex", v, 0u, std::uint32_t{ChannelLines});
     }},
    {"m_currChannelNumber", Whole, [](const Subject& s) { return s.engine.m_Channel; },
     [](const Subject& s, double v) { s.engine.m_Channel = v; }},
    {"m_currChannelFrequency", FlowText::TextToDouble, [](const Subject& s) { return s.engine.m_CenterFreq; },
     [](const Subject& s, double v) { s.engine.m_CenterFreq = v; }},
    {"m_noiseFloorLowBand", Whole, NoiseFloor<0>, PutNoiseFloor<0>},
    {"m_noiseFloorHighBand", Whole, NoiseFloor<1>, PutNoiseFloor<1>},
    {"m_noiseFloorUltraHighBand", Whole, NoiseFloor<2>, PutNoiseFloor<2>},
    {"m_internalLnaGain", Whole, [](const Subject& s) -> double { return s.gain.chains[0].internalGain; },
     [](const Subject& s, double v) {
         const auto index = Within("m_internalLnaGain", v, 0u, 5u);
         for (auto& chain : s.gain.chains) chain.internalGain = index;
     }},
    {"m_isPreLnaResistor", Whole, [](const Subject& s) -> double { return s.gain.chains[0].preLna != 0 ? 1 : 0; },
     [](const Subject& s, double v) {
         for (auto& chain : s.gain.chains) chain.preLna = v != 0 ? 1 : 0;
     }},
}};
// clang-format on

/// Takes the next line off `rest`, without its end. False when there is none.
bool NextLine(std::string_view& rest, std::string_view& line) {
    if (rest.empty()) return false;
    const std::size_t end = rest.find('\n');
    line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return true;
}

/// Takes the next token off a line of cells; runs of commas count as one. Empty when there is none.
std::string_view NextToken(std::string_view& line) {
    const std::size_t begin = line.find_first_not_of(',');
    if (begin == std::string_view::npos) return {};
    line.remove_prefix(begin);
    const std::size_t end = std::min(line.find(','), line.size());
    const std::string_view token = line.substr(0, end);
    line.remove_prefix(end);
    return token;
}

/// The whole numbers that most cells hold need no conversion of a real.
void AppendCell(std::string& text, double value) {
    if (value >= 0 && value <= 9 && value == static_cast<int>(value) && !std::signbit(value))
        text += static_cast<char>('0' + static_cast<int>(value));
    else
        AppendStreamText(text, value);
}

}  // namespace

std::span<const Setting> Settings() {
    return SettingRows;
}

Before::Before(const Subject& subject)
    : m_chains(subject.engine.m_NumChains),
      m_samples(subject.engine.m_NumOfSamples),
      m_sweepLen(subject.engine.m_SweepLen),
      m_sampleRate(subject.engine.m_SampleRate),
      m_rbw(subject.engine.m_RBW),
      m_averageSweeps(subject.engine.m_AverageSweepsVal),
      m_averageCounters(subject.engine.m_ChannelAverageCounter),
      m_properties(subject.engine.m_Properties),
      m_band(subject.engine.m_Band),
      m_bandwidth(subject.engine.m_Bandwidth),
      m_chainName(subject.engine.m_ChainName),
      m_channelIndex(subject.engine.m_ChannelIndex),
      m_channels(subject.engine.m_NumOfChannels),
      m_channel(subject.engine.m_Channel),
      m_centre(subject.engine.m_CenterFreq),
      m_noiseFloors(subject.engine.m_BandNoiseFloor),
      m_gain(subject.gain) {}

void Before::GiveBackSweep(CLmnSA& engine) const {
    engine.m_NumChains = m_chains;
    engine.m_NumOfSamples = m_samples;
    engine.m_SweepLen = m_sweepLen;
}

void Before::GiveBack(const Subject& subject) const {
    CLmnSA& engine = subject.engine;
    GiveBackSweep(engine);
    engine.m_SampleRate = m_sampleRate;
    engine.m_RBW = m_rbw;
    engine.m_AverageSweepsVal = m_averageSweeps;
    engine.m_ChannelAverageCounter = m_averageCounters;
    engine.m_Properties = m_properties;
    engine.m_Band = m_band;
    engine.m_Bandwidth = m_bandwidth;
    engine.m_ChainName = m_chainName;
    engine.m_ChannelIndex = m_channelIndex;
    engine.m_NumOfChannels = m_channels;
    engine.m_Channel = m_channel;
    engine.m_CenterFreq = m_centre;
    engine.m_BandNoiseFloor = m_noiseFloors;
    subject.gain = m_gain;
}

SavedArrays MakeArrays(CLmnSA& engine) {
    SavedArrays arrays;
    const auto chains = static_cast<std::size_t>(engine.NumOfRxChains());
    for (const ArrayField& field : ArrayFields) {
        const std::uint32_t length = LengthOf(field.length, engine);
        arrays[std::string(field.name)] = {length, {chains, std::vector<double>(length)}};
    }
    return arrays;
}

void TakeResults(CLmnSA& engine, SavedArrays& arrays, std::vector<std::pair<double, double>>& ranges) {
    ranges.assign(static_cast<std::size_t>(engine.NumOfRxChains()), {0.0, 0.0});
    if (engine.m_NumChains == 0) return;
    const auto to = [&](const char* name) { return arrays.at(name).Pointers(); };
    engine.UpdateSpectrum(to("m_Spectrum").data());
    engine.UpdateIQ(to("m_ISweep").data(), to("m_QSweep").data());
    engine.UpdateHistogram(to("m_Histogram").data(), to("m_HistogramI").data(), to("m_HistogramQ").data(),
                           ranges.data());
    if (engine.GetProperty(LmnSAProperty::Average)) engine.UpdateChannelAverage(to("m_Average").data());
    if (engine.GetProperty(LmnSAProperty::MaxHold)) engine.UpdateMaxHold(to("m_MaxHold").data());
}

void GiveResults(CLmnSA& engine, SavedArrays& arrays, const std::vector<std::pair<double, double>>& ranges) {
    if (engine.m_NumChains == 0) return;
    const auto from = [&](const char* name) { return arrays.at(name).Pointers(); };
    engine.SaveChannelAverage(from("m_Average").data());
    engine.SaveMaxHold(from("m_MaxHold").data());
    engine.SaveSpectrum(from("m_Spectrum").data());
    engine.SaveHistogram(from("m_Histogram").data(), from("m_HistogramI").data(), from("m_HistogramQ").data(),
                         ranges.data());
}

int TakePowers(const FreqPowerStore& store, SavedArrays& arrays) {
    int left = 0;
    SavedArray& channels = arrays.at("m_freqPowerChannels");
    for (const auto& [key, entry] : store.GetEntries()) {
        const std::int32_t line =
            ChannelDatabase::GetChannelIndex_802_11(key.channel, key.bandwidth, static_cast<std::uint32_t>(key.band));
        if (line >= ChannelLines) {
            ++left;
            continue;
        }
        const auto at = static_cast<std::size_t>(line);
        for (std::size_t chain = 0; chain < PowerFields.size(); ++chain) {
            const std::vector<std::string>& powers = chain == 0 ? entry.chainA : entry.chainB;
            const auto last = std::find_if(powers.rbegin(), powers.rend(),
                                           [](const std::string& power) { return power != NotMeasured; });
            if (last == powers.rend()) continue;
            channels.buffers[chain][at] = key.channel;
            arrays.at(PowerFields[chain]).buffers[chain][at] = static_cast<float>(FlowText::TextToDouble(*last));
        }
    }
    return left;
}

void GivePowers(const SavedArrays& arrays, FreqPowerStore& store) {
    FreqPowerStore::Entries& entries = store.GetEntries();
    entries.clear();
    const auto& channels = arrays.at("m_freqPowerChannels").buffers;
    for (std::size_t chain = 0; chain < PowerFields.size(); ++chain) {
        const std::vector<double>& powers = arrays.at(PowerFields[chain]).buffers[chain];
        for (std::size_t line = 1; line < channels[chain].size(); ++line) {
            const auto channel = ChannelDatabase::GetChannelFromLineNumber(static_cast<std::int32_t>(line));
            if (channels[chain][line] == 0 || !channel) continue;
            FreqPowerEntry& entry =
                entries[{static_cast<std::int32_t>(channel->band), channel->bandwidth, channel->channel}];
            std::string power;
            AppendStreamText(power, powers[line]);
            (chain == 0 ? entry.chainA : entry.chainB) = {power};
            std::vector<std::string>& other = chain == 0 ? entry.chainB : entry.chainA;
            if (channels[1 - chain][line] == 0 && other.empty()) other = {NotMeasured};
        }
    }
}

std::string ToText(const SavedArrays& arrays, std::span<const SavedValue> values) {
    std::string text;
    std::size_t lines = 0;
    std::size_t cells = 0;
    for (const auto& [name, array] : arrays) {
        lines = std::max<std::size_t>(lines, array.length);
        for (std::size_t chain = 0; chain < array.buffers.size(); ++chain, ++cells)
            text.append(name)
                .append("_")
                .append(std::to_string(chain))
                .append("[")
                .append(std::to_string(array.length))
                .append("],");
    }
    text.append(ValuesHeading).append("\n");
    text.reserve(text.size() + lines * (cells + 24));
    for (std::size_t line = 0; line < lines; ++line) {
        for (const auto& [name, array] : arrays) {
            if (line >= array.length) {
                text.append(array.buffers.size(), ',');
                continue;
            }
            for (const std::vector<double>& buffer : array.buffers) {
                AppendCell(text, buffer[line]);
                text += ',';
            }
        }
        if (line < values.size()) {
            text.append(values[line].name).append("=");
            AppendStreamText(text, values[line].value);
        }
        text += '\n';
    }
    return text;
}

std::vector<std::optional<std::string>> ReadValues(std::string_view text, std::span<const std::string_view> names) {
    std::vector<std::optional<std::string>> values(names.size());
    std::string_view line;
    NextLine(text, line);  // the header
    for (std::size_t k = 0; k < names.size() && NextLine(text, line); ++k) {
        const std::string mark = std::string(names[k]) + "=";
        if (const std::size_t at = line.find(mark); at != std::string_view::npos)
            values[k] = std::string(line.substr(at + mark.size()));
    }
    return values;
}

void ReadArrays(std::string_view text, SavedArrays& arrays) {
    std::string_view line;
    NextLine(text, line);  // the header
    for (std::uint32_t row = 0; NextLine(text, line); ++row) {
        bool more = true;
        for (auto& [name, array] : arrays) {
            if (row >= array.length) continue;
            for (std::vector<double>& buffer : array.buffers) {
                const std::string_view token = NextToken(line);
                more = !token.empty();
                if (!more) break;
                buffer[row] = FlowText::TextToDouble(token);
                if (!std::isfinite(buffer[row])) Refuse(name, buffer[row]);
            }
            if (!more) break;
        }
    }
}

OSAL::Outcome<std::string> ReadFile(const std::string& path) {
    static constexpr std::size_t Most = std::size_t{1} << 30;
    static constexpr std::size_t Piece = std::size_t{1} << 20;
    const std::string reason = "could not open file '" + path + "'";
    const OSAL::FileHandle file = OSAL::OpenFile(path, OSAL::ReadOnly, true);
    if (file == OSAL::InvalidFile) return OSAL::Refusal{reason};
    std::string text;
    std::size_t got = 1;
    bool failed = false;
    for (std::size_t at = 0; got > 0 && !failed && at <= Most; at += got) {
        text.resize(at + Piece);
        failed = OSAL::ReadFile(file, at, text.data() + at, Piece, got) != 0;
        text.resize(at + (failed ? 0 : got));
    }
    OSAL::CloseFile(file);
    if (failed || text.size() > Most) return OSAL::Refusal{reason};
    return text;
}

void CheckBuffers(const CLmnSA& engine) {
    const double bins = engine.m_SampleRate / engine.m_RBW * 1000.0;
    if (engine.m_NumChains == 0) return;
    if (engine.m_NumChains < 0 || engine.m_NumChains > CLmnSA::MaxChains || engine.m_NumOfSamples > MaxSamples ||
        !(bins >= 2 && bins <= MaxBins) || !std::has_single_bit(static_cast<std::uint32_t>(bins)))
        throw Common::Exception(Common::Format("no buffers fit ${1} chains of ${2} samples at ${3} MHz with bins of "
                                               "${4} kHz") %
                                engine.m_NumChains % engine.m_NumOfSamples % engine.m_SampleRate % engine.m_RBW);
}

}  // namespace Snapshot
