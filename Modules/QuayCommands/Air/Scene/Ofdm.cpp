#include "Air/Scene/Ofdm.h"

#include <algorithm>
#include <array>
#include <cmath>

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
    m_heard = std::any_of(m_data.begin(), m_data.end(), [&](int k) { return BinOf(k) < m_fft.Size(); });
}

std::size_t OfdmTransmitter::BinOf(int number) const {
    const auto half = static_cast<int>(m_fft.Size() / 2);
    const int bin = number + m_shift;
    if (bin <= -half || bin >= half) return m_fft.Size();
    return static_cast<std::size_t>(bin < 0 ? bin + 2 * half : bin);
}

void OfdmTransmitter::Load(const std::vector<Subcarrier>& subcarriers) {
    std::fill(m_fft.re.begin(), m_fft.re.end(), 0.0);
    std::fill(m_fft.im.begin(), m_fft.im.end(), 0.0);
    for (const auto& carrier : subcarriers) {
        const auto bin = BinOf(carrier.number);
        if (bin == m_fft.Size()) continue;
        m_fft.re[bin] = carrier.value.re;
        m_fft.im[bin] = carrier.value.im;
    }
    m_fft.Run();
}

void OfdmTransmitter::LoadData(std::uint64_t seed, bool signalSymbol) {
    std::fill(m_fft.re.begin(), m_fft.re.end(), 0.0);
    std::fill(m_fft.im.begin(), m_fft.im.end(), 0.0);
    const auto& carriers = signalSymbol ? m_signalData : m_data;
    // 64-QAM has the levels -7, -5 ... 7, whose mean square is 21; the signal symbol is BPSK.
    const double scale = 1.0 / std::sqrt(static_cast<double>(carriers.size()) * (signalSymbol ? 1.0 : 42.0));
    Random random(seed);
    for (const auto number : carriers) {
        const auto bits = random.Next();
        const auto bin = BinOf(number);
        if (bin == m_fft.Size()) continue;
        const auto level = [&](unsigned shift) { return scale * (2.0 * static_cast<double>(bits >> shift & 7) - 7.0); };
        m_fft.re[bin] = signalSymbol ? (bits & 1 ? scale : -scale) : level(8);
        m_fft.im[bin] = signalSymbol ? 0.0 : level(16);
    }
    m_fft.Run();
}

void OfdmTransmitter::AddField(SceneSignal& signal, const Field& field, std::ptrdiff_t frameStart, double amplitude,
                               const SourceLevel& level) {
    const auto size = m_fft.Size();
    const auto start = frameStart + field.first;
    const auto from = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, -start));
    const auto room = static_cast<std::ptrdiff_t>(signal.samples) - start;
    const auto to = std::min(field.samples, static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, room)));
    for (auto& antenna : signal.antennas) {
        const auto& factor = level.chainFactors[antenna.chain];
        Complex turn = Complex{amplitude * factor.re, amplitude * factor.im};
        // The channel's carrier runs on from field to field: bring it from the frame's start to this sample.
        const double origin = static_cast<double>(field.first) + static_cast<double>(field.lead);
        turn = turn * UnitAt(origin * m_shift / static_cast<double>(size));
        turn = turn * UnitAt(m_turnsPerSample * static_cast<double>(field.first + static_cast<std::ptrdiff_t>(from)));
        const auto add = [&](std::size_t n, std::size_t at, std::size_t count) {
            const auto out = start + static_cast<std::ptrdiff_t>(n);
            AddScaled(&m_fft.re[at], &m_fft.im[at], count, turn, antenna.re.data() + out, antenna.im.data() + out);
        };
        if (m_turnsPerSample == 0.0) {
            // The period over and over: from its phase at the field's start up to its end, then from its begin.
            for (std::size_t n = from; n < to;) {
                const auto at = (n + size - field.lead) % size;
                const auto count = std::min(to - n, size - at);
                add(n, at, count);
                n += count;
            }
            continue;
        }
        const auto step = UnitAt(m_turnsPerSample);
        for (std::size_t n = from; n < to; ++n) {
            add(n, (n + size - field.lead) % size, 1);
            turn = turn * step;
        }
    }
}

void OfdmTransmitter::AddFrame(SceneSignal& signal, const OfdmFrame& frame, std::ptrdiff_t first, double amplitude,
                               const SourceLevel& level) {
    const auto symbol = static_cast<std::ptrdiff_t>(m_symbolSamples);
    const auto inCapture = [&](std::ptrdiff_t from, std::ptrdiff_t length) {
        return first + from + length > 0 && first + from < static_cast<std::ptrdiff_t>(signal.samples);
    };
    const auto symbols = static_cast<std::ptrdiff_t>(frame.lengthUs / 4);
    if (!inCapture(0, symbols * symbol)) return;
    const auto prefix = m_symbolSamples / 5;  // 0.8 us of 4
    if (inCapture(0, 2 * symbol)) {
        Load(m_short);
        AddField(signal, {0, 2 * m_symbolSamples, 0}, first, amplitude, level);
    }
    if (inCapture(2 * symbol, 2 * symbol)) {
        Load(m_long);
        AddField(signal, {2 * symbol, 2 * m_symbolSamples, 2 * prefix}, first, amplitude, level);
    }
    for (std::ptrdiff_t k = 4; k < symbols; ++k) {
        if (!inCapture(k * symbol, symbol)) continue;
        LoadData(MixSeed({frame.seed, static_cast<std::uint64_t>(k)}), k == 4);
        AddField(signal, {k * symbol, m_symbolSamples, prefix}, first, amplitude, level);
    }
}

}  // namespace quayCommand
