#include "Air/Scene/Fft.h"

#include <cassert>
#include <cmath>
#include <numbers>

namespace quayCommand {

InverseFft::InverseFft(std::size_t size)
    : re(size), im(size), m_size(size), m_cos(size / 2), m_sin(size / 2), m_otherRe(size), m_otherIm(size) {
    assert(size >= 2 && (size & (size - 1)) == 0);
    for (std::size_t k = 0; k < size / 2; ++k) {
        const double angle = 2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(size);
        m_cos[k] = std::cos(angle);
        m_sin[k] = std::sin(angle);
    }
}

// Stockham's form of radix 2: the output comes in order, and the inner loop runs over neighbours.
void InverseFft::Run() {
    for (std::size_t length = m_size, stride = 1; length > 1; length /= 2, stride *= 2) {
        const std::size_t half = length / 2;
        for (std::size_t p = 0; p < half; ++p) {
            const double c = m_cos[p * stride], s = m_sin[p * stride];
            const double *aRe = &re[stride * p], *aIm = &im[stride * p];
            const double *bRe = &re[stride * (p + half)], *bIm = &im[stride * (p + half)];
            double *sumRe = &m_otherRe[stride * 2 * p], *sumIm = &m_otherIm[stride * 2 * p];
            double *difRe = sumRe + stride, *difIm = sumIm + stride;
            for (std::size_t q = 0; q < stride; ++q) {
                const double dRe = aRe[q] - bRe[q], dIm = aIm[q] - bIm[q];
                sumRe[q] = aRe[q] + bRe[q];
                sumIm[q] = aIm[q] + bIm[q];
                difRe[q] = dRe * c - dIm * s;
                difIm[q] = dRe * s + dIm * c;
            }
        }
        re.swap(m_otherRe);
        im.swap(m_otherIm);
    }
}

}  // namespace quayCommand
