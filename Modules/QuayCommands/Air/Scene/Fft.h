// The inverse transform that builds OFDM symbols and shaped noise.
#pragma once

#include <cstddef>
#include <vector>

namespace quayCommand {

/// x[n] = sum over k of X[k] exp(+j 2 pi k n / N), not scaled; N is a power of two. Bins at or above N / 2 are the
/// negative frequencies. The object holds its work memory: one thread at a time.
class InverseFft {
public:
    explicit InverseFft(std::size_t size);
    std::size_t Size() const { return m_size; }

    /// Input, then output of `Run`; each `Size()` long.
    std::vector<double> re;
    std::vector<double> im;
    void Run();

private:
    std::size_t m_size;
    std::vector<double> m_cos, m_sin, m_otherRe, m_otherIm;
};

}  // namespace quayCommand
