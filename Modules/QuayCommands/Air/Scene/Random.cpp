#include "Air/Scene/Random.h"

#include <cmath>

namespace quayCommand {
namespace {

std::uint64_t SplitMix(std::uint64_t& state) {
    state += 0x9E3779B97F4A7C15u;
    auto z = state;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
    z = (z ^ z >> 27) * 0x94D049BB133111EBu;
    return z ^ z >> 31;
}

/// 128 layers of equal area under exp(-x^2 / 2), after Marsaglia and Tsang in Doornik's form: layer k reaches to x[k],
/// and a value within ratio[k] of it needs no further test.
struct Ziggurat {
    static constexpr int Layers = 128;
    static constexpr double Tail = 3.442619855899;
    static constexpr double Area = 9.91256303526217e-3;
    std::array<double, Layers + 1> x{};
    std::array<double, Layers> ratio{};

    Ziggurat() {
        double density = std::exp(-0.5 * Tail * Tail);
        x[0] = Area / density;
        x[1] = Tail;
        for (std::size_t k = 2; k < Layers; ++k) {
            x[k] = std::sqrt(-2.0 * std::log(Area / x[k - 1] + density));
            density = std::exp(-0.5 * x[k] * x[k]);
        }
        x[Layers] = 0.0;
        for (std::size_t k = 0; k < Layers; ++k)
            ratio[k] = x[k + 1] / x[k];
    }
};

const Ziggurat& Table() {
    static const Ziggurat table;
    return table;
}

/// The far tail, by two exponential draws.
double TailValue(Random& random, bool negative) {
    for (;;) {
        const double x = std::log(1.0 - random.Uniform()) / Ziggurat::Tail;
        const double y = std::log(1.0 - random.Uniform());
        if (-2.0 * y >= x * x) return negative ? x - Ziggurat::Tail : Ziggurat::Tail - x;
    }
}

/// One value of the distribution.
inline double NormalFrom(Random& random, const Ziggurat& table) {
    for (;;) {
        const auto bits = random.Next();
        const auto k = static_cast<std::size_t>(bits & (Ziggurat::Layers - 1));
        // The upper 53 bits as a signed fraction from -1 to 1; the layer uses other bits.
        const double u = static_cast<double>(static_cast<std::int64_t>(bits) >> 11) * 0x1p-52;
        if (std::fabs(u) < table.ratio[k]) return u * table.x[k];
        if (k == 0) return TailValue(random, u < 0.0);
        const double value = u * table.x[k];
        const double upper = std::exp(-0.5 * (table.x[k] * table.x[k] - value * value));
        const double lower = std::exp(-0.5 * (table.x[k + 1] * table.x[k + 1] - value * value));
        if (lower + random.Uniform() * (upper - lower) < 1.0) return value;
    }
}

}  // namespace

std::uint64_t MixSeed(std::initializer_list<std::uint64_t> parts) {
    std::uint64_t state = 0x6A09E667F3BCC909u;
    for (const auto part : parts) {
        state ^= part;
        state = SplitMix(state);
    }
    return state;
}

Random::Random(std::uint64_t seed) {
    for (auto& word : m_state)
        word = SplitMix(seed);
}

void AddNormal(Random& random, double sigma, std::span<double> values) {
    const auto& table = Table();
    auto local = random;  // in registers while the loop runs
    for (auto& value : values)
        value += sigma * NormalFrom(local, table);
    random = local;
}

}  // namespace quayCommand
