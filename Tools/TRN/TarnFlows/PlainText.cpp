#include "PlainText.h"

#include <array>

#include "Support/NumberText.h"

namespace PlainText {

namespace {

/// Lines of numbers, one after the other.
class LineText {
public:
    void Add(std::span<const double> values) {
        if (m_hasLine) m_text += '\n';
        m_hasLine = true;
        AppendStreamList(m_text, values, " ");
    }
    std::string Take() { return std::move(m_text); }

private:
    std::string m_text;
    bool m_hasLine = false;
};

}  // namespace

std::string Sweep(const SweepReadout& sweep) {
    return std::to_string(sweep.bins) + '\n' + std::to_string(sweep.samples) + '\n' +
           std::to_string(sweep.histogramBuckets) + '\n' + std::to_string(sweep.sweepLength);
}

std::string Bins(const ChainBuffers& bins) {
    LineText text;
    for (std::size_t chain = 0; chain < bins.Chains(); ++chain)
        text.Add(bins[chain]);
    return text.Take();
}

std::string IQ(const IQReadout& codes) {
    LineText text;
    for (std::size_t chain = 0; chain < codes.i.Chains(); ++chain) {
        text.Add(codes.i[chain]);
        text.Add(codes.q[chain]);
    }
    return text.Take();
}

std::string Histogram(const HistogramReadout& counts) {
    LineText text;
    for (std::size_t chain = 0; chain < counts.both.Chains(); ++chain) {
        for (const ChainBuffers* line : {&counts.both, &counts.i, &counts.q})
            text.Add((*line)[chain]);
        text.Add(std::array{counts.ranges[chain].first, counts.ranges[chain].second});
    }
    return text.Take();
}

std::string Peaks(const PeaksReadout& peaks) {
    LineText text;
    for (const auto& chain : peaks) {
        std::vector<double> numbers;
        for (const auto& [frequency, power] : chain)
            numbers.insert(numbers.end(), {frequency, power});
        text.Add(numbers);
    }
    return text.Take();
}

std::string Number(double value) {
    std::string text;
    AppendStreamText(text, value);
    return text;
}

}  // namespace PlainText
