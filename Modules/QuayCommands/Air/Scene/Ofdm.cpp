#include "Air/Scene/Ofdm.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "Air/Scene/Random.h"

namespace quayCommand {
namespace {

/// Signs of the long training field on the subcarriers -26 to 26.
constexpr std::array<int, 53> LongSigns{1,  1,  -1, -1, 1,  1, -1, 1,  -1, 1, 1,  1,  1,  1, 1,  -1, -1, 1,
                                        1,  -1, 1,  -1, 1,  1, 1,  1,  0,  1, -1, -1, 1,  1, -1, 1,  -1, 1,
                                        -1, -1, -1, -1, -1, 1, 1,  -1, -1, 1, -1, 1,  -1, 1, 1,  1,  1};

/// Signs of 1 + j on every fourth subcarrier from -24 to 24.
constexpr std::array<int, 13> ShortSigns{1, -1, 1, -1, -1, 1, 0, -1, -1, 1, 1, 1, 1};

/// What the 20 MHz parts of a wide channel are multiplied by, from the lowest up.
Complex PartFactor(unsigned widthMhz, unsigned part) {
    if (widthMhz == 20) return {1.0, 0.0};
    if (widthMhz == 40) return part == 0 ? Complex{1.0, 0.0} : Complex{0.0, 1.0};
    return {part % 4 == 0 ? 1.0 : -1.0, 0.0};
}

/// A 20 MHz pattern on each part of the channel, scaled to power 1.
std::vector<Subcarrier> Repeated(unsigned widthMhz, const std::vector<Subcarrier>& pattern) {
    const unsigned parts = widthMhz / 20;
    double power = 0.0;
    for (const auto& carrier : pattern)
        power += carrier.value.re * carrier.value.re + carrier.value.im * carrier.value.im;
    const double scale = 1.0 / std::sqrt(power * parts);
    std::vector<Subcarrier> out;
    for (unsigned part = 0; part < parts; ++part) {
        const int centre = (2 * static_cast<int>(part) + 1 - static_cast<int>(parts)) * 32;
        const auto factor = PartFactor(widthMhz, part);
        for (const auto& carrier : pattern)
            out.push_back({centre + carrier.number, Complex{scale * factor.re, scale * factor.im} * carrier.value});
    }
    return out;
}

constexpr double FadeUs = 0.1;
constexpr double EdgeFadeUs = 0.8;
/// What counts as next to the end of the span; the receiver's filter takes the outermost part of it. A network that is
/// as wide as the span leaves 1.9 MHz free there.
constexpr double EdgeMhz = 6.0;
constexpr double FilteredMhz = 1.5;

/// Weights of a rising fade, an even number of samples. Together with the falling one it keeps the power of symbols
/// that know nothing of each other: the squares add up to 1.
std::vector<double> Fade(double lengthUs, double sampleRateMhz) {
    std::vector<double> weights(2 *
                                static_cast<std::size_t>(std::max(1l, std::lround(lengthUs * sampleRateMhz / 2.0))));
    for (std::size_t n = 0; n < weights.size(); ++n) {
        const double place = (static_cast<double>(n) + 0.5) / static_cast<double>(weights.size());
        const double rise = std::sin(std::numbers::pi / 2.0 * place);
        weights[n] = std::sin(std::numbers::pi / 2.0 * rise * rise);
    }
    return weights;
}

/// Numbers from -last to -first and from first to last, round `centre`.
void AppendBothSides(std::vector<int>& out, int centre, int first, int last) {
    for (int k = -last; k <= last; ++k)
        if (std::abs(k) >= first) out.push_back(centre + k);
}

}  // namespace

std::vector<int> DataSubcarriers(unsigned widthMhz, bool legacy) {
    std::vector<int> out;
    if (widthMhz == 20)
        AppendBothSides(out, 0, 1, legacy ? 26 : 28);
    else if (widthMhz == 40)
        AppendBothSides(out, 0, 2, 58);
    else
        for (int part = 0, parts = static_cast<int>(widthMhz / 80); part < parts; ++part)
            AppendBothSides(out, (2 * part + 1 - parts) * 128, 2, 122);
    return out;
}

std::vector<Subcarrier> ShortTraining(unsigned widthMhz) {
    std::vector<Subcarrier> pattern;
    for (int k = 0; k < 13; ++k)
        if (const double sign = ShortSigns[static_cast<std::size_t>(k)]; sign != 0.0)
            pattern.push_back({4 * (k - 6), {sign, sign}});
    return Repeated(widthMhz, pattern);
}

std::vector<Subcarrier> LongTraining(unsigned widthMhz) {
    std::vector<Subcarrier> pattern;
    for (int k = 0; k < 53; ++k)
        if (const double sign = LongSigns[static_cast<std::size_t>(k)]; sign != 0.0)
            pattern.push_back({k - 26, {sign, 0.0}});
    return Repeated(widthMhz, pattern);
}

OfdmTransmitter::OfdmTransmitter(unsigned widthMhz, bool legacy, double offsetMhz, double sampleRateMhz)
    : m_symbolSamples(static_cast<std::size_t>(std::lround(4.0 * sampleRateMhz))),
      m_shift(static_cast<int>(std::lround(offsetMhz / SubcarrierMhz))),
      m_turnsPerSample((offsetMhz - m_shift * SubcarrierMhz) / sampleRateMhz),
      m_fft(static_cast<std::size_t>(std::lround(sampleRateMhz / SubcarrierMhz))),
      m_short(ShortTraining(widthMhz)),
      m_long(LongTraining(widthMhz)),
      m_data(DataSubcarriers(widthMhz, legacy)) {
    for (const auto& carrier : m_long)
        m_signalData.push_back(carrier.number);
    const auto size = m_fft.Size();
    const auto edge = static_cast<std::size_t>(std::lround(EdgeMhz / SubcarrierMhz));
    m_groups[0].fade = Fade(FadeUs, sampleRateMhz);
    m_groups[1].fade = Fade(EdgeFadeUs, sampleRateMhz);
    for (std::size_t g = 0; g < m_groups.size(); ++g) {
        auto& bins = m_groups[g].bins;
        bins.resize(size + 1);  // one more, for what lies beyond the span
        for (std::size_t bin = 0; bin < size; ++bin)
            bins[bin] = (bin >= size / 2 - edge && bin <= size / 2 + edge) == (g == 1);
        m_groups[g].isHeard = std::any_of(m_data.begin(), m_data.end(), [&](int k) { return bins[BinOf(k)]; });
    }
}

std::size_t OfdmTransmitter::BinOf(int number) const {
    const auto half = static_cast<int>(m_fft.Size() / 2);
    const int bin = number + m_shift;
    if (std::abs(bin) > half - static_cast<int>(FilteredMhz / SubcarrierMhz)) return m_fft.Size();
    return static_cast<std::size_t>(bin < 0 ? bin + 2 * half : bin);
}

void OfdmTransmitter::Clear() {
    std::fill(m_fft.re.begin(), m_fft.re.end(), 0.0);
    std::fill(m_fft.im.begin(), m_fft.im.end(), 0.0);
}

void OfdmTransmitter::Put(const Group& group, const Subcarrier& carrier) {
    const auto bin = BinOf(carrier.number);
    if (!group.bins[bin]) return;
    m_fft.re[bin] = carrier.value.re;
    m_fft.im[bin] = carrier.value.im;
}

void OfdmTransmitter::Load(const Group& group, const std::vector<Subcarrier>& subcarriers) {
    Clear();
    for (const auto& carrier : subcarriers)
        Put(group, carrier);
    m_fft.Run();
}

void OfdmTransmitter::LoadData(const Group& group, std::uint64_t seed, bool signalSymbol) {
    Clear();
    const auto& carriers = signalSymbol ? m_signalData : m_data;
    // 64-QAM has the levels -7, -5 ... 7, whose mean square is 21; the signal symbol is BPSK.
    const double scale = 1.0 / std::sqrt(static_cast<double>(carriers.size()) * (signalSymbol ? 1.0 : 42.0));
    Random random(seed);
    for (const auto number : carriers) {
        const auto bits = random.Next();
        const auto level = [&](unsigned shift) { return scale * (2.0 * static_cast<double>(bits >> shift & 7) - 7.0); };
        Put(group, {number, signalSymbol ? Complex{bits & 1 ? scale : -scale, 0.0} : Complex{level(8), level(16)}});
    }
    m_fft.Run();
}

// Sample n of the field counts from the begin of its fade-in; the field itself begins half a fade later.
void OfdmTransmitter::AddField(SceneSignal& signal, const Group& group, const Field& field, std::ptrdiff_t frameStart,
                               double amplitude, const SourceLevel& level) {
    const auto size = m_fft.Size();
    const auto fade = group.fade.size();
    const auto samples = field.samples + fade;
    const auto first = field.first - static_cast<std::ptrdiff_t>(fade / 2);
    const auto lead = field.lead + fade / 2;
    const auto start = frameStart + first;
    const auto from = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, -start));
    const auto room = static_cast<std::ptrdiff_t>(signal.samples) - start;
    const auto to = std::min(samples, static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, room)));
    for (auto& antenna : signal.antennas) {
        const auto& factor = level.chainFactors[antenna.chain];
        Complex turn = Complex{amplitude * factor.re, amplitude * factor.im};
        // The channel's carrier runs on from field to field: bring it from the frame's start to this sample.
        const double origin = static_cast<double>(first) + static_cast<double>(lead);
        turn = turn * UnitAt(origin * m_shift / static_cast<double>(size));
        turn = turn * UnitAt(m_turnsPerSample * static_cast<double>(first + static_cast<std::ptrdiff_t>(from)));
        const auto step = UnitAt(m_turnsPerSample);
        // As many samples as share a weight and lie together in the period, which repeats.
        for (std::size_t n = from; n < to;) {
            const bool isFading = n < fade || n >= field.samples;
            const double weight = n < fade ? group.fade[n] : n >= field.samples ? group.fade[samples - 1 - n] : 1.0;
            const auto at = (n + size - lead % size) % size;
            auto count = std::min({to - n, size - at, field.samples - std::min(n, field.samples)});
            if (isFading || m_turnsPerSample != 0.0) count = 1;
            const auto out = start + static_cast<std::ptrdiff_t>(n);
            AddScaled(&m_fft.re[at], &m_fft.im[at], count, {turn.re * weight, turn.im * weight},
                      antenna.re.data() + out, antenna.im.data() + out);
            turn = turn * step;
            n += count;
        }
    }
}

void OfdmTransmitter::AddFrame(SceneSignal& signal, const OfdmFrame& frame, std::ptrdiff_t first, double amplitude,
                               const SourceLevel& level) {
    for (const auto& group : m_groups)
        if (group.isHeard) AddGroup(signal, group, frame, first, amplitude, level);
}

void OfdmTransmitter::AddGroup(SceneSignal& signal, const Group& group, const OfdmFrame& frame, std::ptrdiff_t first,
                               double amplitude, const SourceLevel& level) {
    const auto symbol = static_cast<std::ptrdiff_t>(m_symbolSamples);
    const auto half = static_cast<std::ptrdiff_t>(group.fade.size() / 2);
    const auto inCapture = [&](std::ptrdiff_t from, std::ptrdiff_t length) {
        return first + from + length + half > 0 && first + from - half < static_cast<std::ptrdiff_t>(signal.samples);
    };
    const auto symbols = static_cast<std::ptrdiff_t>(frame.lengthUs / 4);
    if (!inCapture(0, symbols * symbol)) return;
    const auto prefix = m_symbolSamples / 5;  // 0.8 us of 4
    if (inCapture(0, 2 * symbol)) {
        Load(group, m_short);
        AddField(signal, group, {0, 2 * m_symbolSamples, 0}, first, amplitude, level);
    }
    if (inCapture(2 * symbol, 2 * symbol)) {
        Load(group, m_long);
        AddField(signal, group, {2 * symbol, 2 * m_symbolSamples, 2 * prefix}, first, amplitude, level);
    }
    for (std::ptrdiff_t k = 4; k < symbols; ++k) {
        if (!inCapture(k * symbol, symbol)) continue;
        LoadData(group, MixSeed({frame.seed, static_cast<std::uint64_t>(k)}), k == 4);
        AddField(signal, group, {k * symbol, m_symbolSamples, prefix}, first, amplitude, level);
    }
}

}  // namespace quayCommand
