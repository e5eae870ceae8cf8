#include "GainModel.h"

#include <iterator>

namespace LumenSpectrumAnalyzer {

namespace {

using enum ChipFamily;
using enum ChannelClass;

/// Which board SKUs a row serves.
enum class Skus { Any, Sku0, Sku1, Sku0Or2, Not0, Not0Or1 };
using enum Skus;

/// The correction c0 + c1 ch + c2 ch^2 + c3 ch^3 in dB, found by calibration of the family's receivers.
struct Correction {
    ChipFamily family;
    char chain;
    std::uint32_t band;
    ChannelClass channels;
    Skus skus;
    double coefficient[4];
};

// A channel without a row gets no correction.
// clang-format off
constexpr Correction Corrections[] = {
    {FirYew, 'A', 0, All, Any, {-1.7402, 0.1008, 0, 0}},
    {FirYew, 'A', 1, High, Any, {-9.332, 0.1597, -0.0007, 0}},
    {FirYew, 'A', 1, Low, Any, {-3.0569, 0.1407, -0.0013, 0}},
    {FirYew, 'B', 0, All, Any, {-1.6845, 0.0946, 0, 0}},
    {FirYew, 'B', 1, High, Any, {10.014, -0.1514, 0.0005, 0}},
    {FirYew, 'B', 1, Low, Any, {4.163, -0.1549, 0.0013, 0}},
    {Ash2, 'A', 0, All, Sku0, {-2.917078496504, 0.051510114885, 0, 0}},
    {Ash2, 'A', 0, All, Sku1, {-2.9, 0.005507672684, 0, 0}},
    {Ash2, 'A', 0, All, Not0Or1, {-0.401826984127, 0.0181839939822085, 0, 0}},
    {Ash2, 'A', 1, High, Sku0, {-1.153531061586, -0.006281758673, 5.757568e-06, 0}},
    {Ash2, 'A', 1, High, Sku1, {-1.998878887368, 0.013916809691, -0.000109517087, 0}},
    {Ash2, 'A', 1, High, Not0Or1, {-3.910516323432, 0.0573337262384104, -0.000232176128156538, 0}},
    {Ash2, 'A', 1, Low, Sku0, {-1.762433170996, -0.003866450216, 0, 0}},
    {Ash2, 'A', 1, Low, Sku1, {-2.441404421769, 0.003816847364, 0, 0}},
    {Ash2, 'A', 1, Low, Not0Or1, {1.4054367676767, -0.0995544654882139, 0.000945626052188536, 0}},
    {Ash2, 'A', 2, All, Sku0, {-2.272068317858, -0.002408547932, -9.5313297e-05, 1.57018e-07}},
    {Ash2, 'A', 2, All, Sku1, {-2.618841781927, 0.000865171055, -0.000132774066, 2.88998e-07}},
    {Ash2, 'A', 2, All, Not0Or1, {-0.6169211831347, -0.0161148958569625, -1.77229131764949e-05, 0}},
    {Ash2, 'B', 0, All, Sku0, {-2.497505885781, 0.001863777889, 0, 0}},
    {Ash2, 'B', 0, All, Sku1, {-2.482596932234, 0.014894682104, 0, 0}},
    {Ash2, 'B', 0, All, Not0Or1, {-0.6153474358974, 0.0115970390720389, 0, 0}},
    {Ash2, 'B', 1, High, Sku0, {-8.342435118283, 0.109161934648, -0.00044144245, 0}},
    {Ash2, 'B', 1, High, Sku1, {-2.852876159352, 0.023471332739, -0.000131613398, 0}},
    {Ash2, 'B', 1, High, Not0Or1, {-5.1188173084443, 0.0812280233745163, -0.000350319503228797, 0}},
    {Ash2, 'B', 1, Low, Sku0, {-2.987906764069, 0.013029396645, 0, 0}},
    {Ash2, 'B', 1, Low, Sku1, {-2.918619812925, 0.011307089711, 0, 0}},
    {Ash2, 'B', 1, Low, Not0Or1, {-1.5286902113238, 0.00596420620680494, 0, 0}},
    {Ash2, 'B', 2, All, Sku0, {-2.034339936199, -0.038389489097, 0.000225813387, -5.08737e-07}},
    {Ash2, 'B', 2, All, Sku1, {-2.530314833192, -0.00102609489, -0.000131099733, 3.31302e-07}},
    {Ash2, 'B', 2, All, Not0Or1, {-1.1759034532301, -0.00909184390481749, 6.03591496697737e-05, -5.09348256877835e-07}},
    {Ash4, 'A', 0, All, Sku0, {-2.62, -0.012, 0, 0}},
    {Ash4, 'A', 0, All, Not0, {-0.401826984127, 0.0181839939822085, 0, 0}},
    {Ash4, 'A', 1, High, Not0, {-3.910516323432, 0.0573337262384104, -0.000232176128156538, 0}},
    {Ash4, 'A', 1, Low, Not0, {1.4054367676767, -0.0995544654882139, 0.000945626052188536, 0}},
    {Ash4, 'A', 1, All, Sku0, {-3.8618, 0.01185, -5e-05, 0}},
    {Ash4, 'A', 2, All, Sku0, {-2.9091, -0.020775, 0, 0}},
    {Ash4, 'A', 2, All, Not0, {-0.6169211831347, -0.0161148958569625, -1.77229131764949e-05, 0}},
    {Ash4, 'B', 0, All, Sku0, {-2.74, -0.012, 0, 0}},
    {Ash4, 'B', 0, All, Not0, {-0.6153474358974, 0.0115970390720389, 0, 0}},
    {Ash4, 'B', 1, High, Not0, {-5.1188173084443, 0.0812280233745163, -0.000350319503228797, 0}},
    {Ash4, 'B', 1, Low, Not0, {-1.5286902113238, 0.00596420620680494, 0, 0}},
    {Ash4, 'B', 1, All, Sku0, {-3.8718, 0.00935, -5e-05, 0}},
    {Ash4, 'B', 2, All, Sku0, {-2.9091, -0.020775, 0, 0}},
    {Ash4, 'B', 2, All, Not0, {-1.1759034532301, -0.00909184390481749, 6.03591496697737e-05, -5.09348256877835e-07}},
    {Bay, 'A', 0, All, Sku0, {-2.5318593407, 0.014068629, 0, 0}},
    {Bay, 'A', 0, All, Sku1, {-2.7625652015, 0.0223328624, 0, 0}},
    {Bay, 'A', 0, All, Not0Or1, {-2.7071873718, 0.0173833608, 0, 0}},
    {Bay, 'A', 1, High, Sku0, {-1.834063439, 0.0161211782, -0.0001128371, 0}},
    {Bay, 'A', 1, High, Sku1, {-0.7180384299, -0.0180028199, 0, 0}},
    {Bay, 'A', 1, High, Not0Or1, {-1.4877394283, -0.0068519427, 0, 0}},
    {Bay, 'A', 1, Low, Sku0, {-1.01025428, -0.0087577239, 0, 0}},
    {Bay, 'A', 1, Low, Sku1, {-1.5566230726, -0.0152874433, 0, 0}},
    {Bay, 'A', 1, Low, Not0Or1, {-2.0254513021, -0.0011031839, 0, 0}},
    {Bay, 'A', 2, All, Sku0, {-2.2645064997, 0.0002658975, -6.52789e-05, 1.3e-09}},
    {Bay, 'A', 2, All, Sku1, {-3.7035718134, -0.0064361487, 5.75719e-05, -3.416e-07}},
    {Bay, 'A', 2, All, Not0Or1, {-2.8800404077, 0.000897104, -4.53679e-05, -6.5e-08}},
    {Bay, 'B', 0, All, Sku0, {-2.9086804945, 0.0428736918, 0, 0}},
    {Bay, 'B', 0, All, Sku1, {-3.3011835165, 0.0314778912, 0, 0}},
    {Bay, 'B', 0, All, Not0Or1, {-3.0745407051, 0.0286828297, 0, 0}},
    {Bay, 'B', 1, High, Sku0, {-6.4707547262, 0.0864041294, -0.0003834823, 0}},
    {Bay, 'B', 1, High, Sku1, {-0.9650189883, -0.0152331072, 0, 0}},
    {Bay, 'B', 1, High, Not0Or1, {-8.0128221573, 0.1105584811, -0.0004866131, 0}},
    {Bay, 'B', 1, Low, Sku0, {-2.1379210601, 0.0015998795, 0, 0}},
    {Bay, 'B', 1, Low, Sku1, {-2.0149735828, -0.0061759212, 0, 0}},
    {Bay, 'B', 1, Low, Not0Or1, {-2.2818860283, 0.0026923982, 0, 0}},
    {Bay, 'B', 2, Low, Not0Or1, {-2.8402210337, -0.0021037572, -0.0001070334, 0}},
    {Bay, 'B', 2, High, Not0Or1, {-18.9467946705, 0.2970630972, -0.0018270254, 3.4506e-06}},
    {Bay, 'B', 2, All, Sku0, {-2.6057223967, -0.0247473519, 0.0001900163, -6.243e-07}},
    {Bay, 'B', 2, All, Sku1, {-3.5593313185, -0.0040647939, 1.55171e-05, -1.674e-07}},
    {Pine, 'A', 0, Marked, Any, {-7.825, 0.0287, 0, 0}},
    {Pine, 'A', 0, Others, Any, {-1.9574, 0.0401, 0, 0}},
    {Pine, 'A', 1, High, Any, {4.34969629, -0.00200319, 0, 0}},
    {Pine, 'A', 1, Low, Any, {3.38525401, -0.00026505, 0, 0}},
    {Pine, 'A', 2, High, Any, {4.1375238085, 0.0057585928, -9.25436e-05, 2.427e-07}},
    {Pine, 'A', 2, Low, Any, {4.18210869, -0.01593233, 0, 0}},
    {Pine, 'B', 0, Marked, Any, {-6.8577, 0.0497, 0, 0}},
    {Pine, 'B', 0, Others, Any, {-0.944, 0.0521, 0, 0}},
    {Pine, 'B', 1, High, Any, {5.41216033, -0.01062336, 0, 0}},
    {Pine, 'B', 1, Low, Any, {3.02995336, 0.01110184, -9.372e-05, 0}},
    {Pine, 'B', 2, High, Any, {-0.294526943, 0.0955838597, -0.0006250731, 1.1546e-06}},
    {Pine, 'B', 2, Low, Any, {3.5006270054, -0.0224123821, 0.0009328715, -9.7337e-06}},
    {Rowan, 'A', 0, Marked, Sku0Or2, {-7.4239, 0.0102, 0, 0}},
    {Rowan, 'A', 0, Marked, Sku1, {-7.6954, 0.04, 0, 0}},
    {Rowan, 'A', 0, Others, Sku0Or2, {-1.5192, 0.0116, 0, 0}},
    {Rowan, 'A', 0, Others, Sku1, {-1.7584, 0.0408, 0, 0}},
    {Rowan, 'A', 1, High, Sku0Or2, {-3.6618933, 0.11605989, -0.00041036, 0}},
    {Rowan, 'A', 1, High, Sku1, {-9.53905785, 0.18037417, -0.00059674, 0}},
    {Rowan, 'A', 1, Low, Sku0Or2, {3.09273901, 0.01381826, -7.052e-05, 0}},
    {Rowan, 'A', 1, Low, Sku1, {3.950701, -0.01760563, 8.77e-05, 0}},
    {Rowan, 'A', 2, High, Sku0Or2, {-1.59737339, 0.12992314, -0.00098077, 2.16e-06}},
    {Rowan, 'A', 2, High, Sku1, {0.56321886, 0.10451375, -0.00091481, 2.19e-06}},
    {Rowan, 'A', 2, Low, Sku0Or2, {3.80003607, 0.00028267, -0.00025663, 0}},
    {Rowan, 'A', 2, Low, Sku1, {4.39786262, 0.00131453, -0.00029119, 0}},
    {Rowan, 'B', 0, Marked, Sku0Or2, {-7.0261, 0.0244, 0, 0}},
    {Rowan, 'B', 0, Marked, Sku1, {-7.9474, 0.0346, 0, 0}},
    {Rowan, 'B', 0, Others, Sku0Or2, {-1.1492, 0.0329, 0, 0}},
    {Rowan, 'B', 0, Others, Sku1, {-2.0237, 0.0427, 0, 0}},
    {Rowan, 'B', 1, High, Sku0Or2, {15.64590292, -0.1475824, 0.00047773, 0}},
    {Rowan, 'B', 1, High, Sku1, {20.9380581, -0.22135358, 0.00071486, 0}},
    {Rowan, 'B', 1, Low, Sku0Or2, {3.04801859, 0.01225455, -6.67e-05, 0}},
    {Rowan, 'B', 1, Low, Sku1, {3.07113421, -0.00368377, 2.036e-05, 0}},
    {Rowan, 'B', 2, High, Sku0Or2, {5.3825002634, -0.0318800369, 8.55168e-05, 0}},
    {Rowan, 'B', 2, High, Sku1, {1.9892988821, 0.0637292369, -0.0006493833, 1.6758e-06}},
    {Rowan, 'B', 2, Low, Sku0Or2, {4.1020382019, -0.013502897, -0.0001258312, 0}},
    {Rowan, 'B', 2, Low, Sku1, {4.1866360975, -0.0054838434, -0.0002545349, 0}},
};
// clang-format on

bool Serves(Skus skus, std::uint32_t sku) {
    switch (skus) {
        case Any:
            return true;
        case Sku0:
            return sku == 0;
        case Sku1:
            return sku == 1;
        case Sku0Or2:
            return sku == 0 || sku == 2;
        case Not0:
            return sku != 0;
        case Not0Or1:
            return sku > 1;
    }
    return false;
}

double CorrectionDb(ChipFamily family, char chain, std::uint32_t band, double channel, std::uint32_t sku) {
    const ChannelClass channels = ClassOfChannel(family, band, channel);
    for (const Correction& row : Corrections) {
        if (row.family != family || row.chain != chain || row.band != band || !Serves(row.skus, sku)) continue;
        if (row.channels != All && row.channels != channels) continue;
        const double* const c = row.coefficient;
        return ((c[3] * channel + c[2]) * channel + c[1]) * channel + c[0];
    }
    return 0.0;
}

/// Families without a correction table: their steps in dB at each band.
double PlainGain(double preLna, double internalGain, std::uint32_t band) {
    constexpr double Offset = 67;
    if (band == 0) return (7 - internalGain - preLna) * 6 + Offset;
    if (band <= 2) return (15 - 2 * preLna - internalGain) * 3 + Offset;
    return Offset;
}

}  // namespace

ChannelClass ClassOfChannel(ChipFamily family, std::uint32_t band, double channel) {
    const auto within = [channel](double first, double last) { return channel >= first && channel <= last; };
    if (family == Pine || family == Rowan) {
        if (band == 0) return channel == 3 || channel == 4 || channel == 5 || channel == 13 ? Marked : Others;
        if (band == 1) return channel <= 140 ? Low : High;
        if (band == 2) return channel <= 69 ? Low : High;
        return Others;
    }
    if (band == 1) return within(36, 64) ? Low : within(100, 165) ? High : Others;
    if (band == 2) return channel >= 1 && channel < 100 ? Low : within(100, 233) ? High : Others;
    return Others;
}

double ManualGain(ChipFamily family, std::uint32_t preLna, std::uint32_t internalGain, std::uint32_t band,
                  std::string_view chain, double channel, std::uint32_t boardSku) {
    if (family == Plain || family == ElmOak) return PlainGain(preLna, internalGain, band);
    constexpr double CoarseSpan = 45;  // from the full gain to the bare offset
    const double full = family == Pine || family == Rowan ? 124 : 112;
    const bool hasBand = band <= 1 || (band == 2 && family != FirYew);
    if ((chain != "A" && chain != "B") || !hasBand) return full - CoarseSpan;
    const double internalStep = band == 0 ? 6 : 3;
    return full - 6.0 * preLna - internalStep * internalGain + CorrectionDb(family, chain[0], band, channel, boardSku);
}

}  // namespace LumenSpectrumAnalyzer
