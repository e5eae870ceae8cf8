// Copies of the engine's buffers for the length of one answer.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// One zeroed buffer of equal length for each chain, and the array of pointers that the engine fills them through.
class ChainBuffers {
public:
    ChainBuffers(std::size_t chains, std::size_t length) : m_length(length), m_values(chains * length) {
        for (std::size_t chain = 0; chain < chains; ++chain)
            m_pointers.push_back(m_values.data() + chain * length);
    }
    ChainBuffers(ChainBuffers&&) = default;
    ChainBuffers& operator=(ChainBuffers&&) = default;
    ~ChainBuffers() = default;
    ChainBuffers(const ChainBuffers&) = delete;
    ChainBuffers& operator=(const ChainBuffers&) = delete;

    double** Pointers() { return m_pointers.data(); }
    std::size_t Chains() const { return m_pointers.size(); }
    std::span<const double> operator[](std::size_t chain) const { return {m_pointers[chain], m_length}; }

private:
    std::size_t m_length;
    std::vector<double> m_values;
    std::vector<double*> m_pointers;
};
