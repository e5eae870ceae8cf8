// Random numbers that are the same on every machine and with every library: a seed is a promise.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace quayCommand {

/// One seed out of several numbers; a change of any bit of any of them changes about half of the seed's bits.
std::uint64_t MixSeed(std::initializer_list<std::uint64_t> parts);

/// xoshiro256++ of Blackman and Vigna, its state filled by splitmix64.
class Random {
public:
    explicit Random(std::uint64_t seed);

    std::uint64_t Next() {
        const auto result = Rotated(m_state[0] + m_state[3], 23) + m_state[0];
        const auto t = m_state[1] << 17;
        m_state[2] ^= m_state[0];
        m_state[3] ^= m_state[1];
        m_state[1] ^= m_state[2];
        m_state[0] ^= m_state[3];
        m_state[2] ^= t;
        m_state[3] = Rotated(m_state[3], 45);
        return result;
    }
    /// From 0 up to but excluding 1.
    double Uniform() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

private:
    static std::uint64_t Rotated(std::uint64_t value, int by) { return value << by | value >> (64 - by); }
    std::array<std::uint64_t, 4> m_state;
};

/// Adds independent normal noise of mean 0 and deviation `sigma` to each value (ziggurat).
void AddNormal(Random& random, double sigma, std::span<double> values);

}  // namespace quayCommand
