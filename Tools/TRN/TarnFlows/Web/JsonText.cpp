#include "Web/JsonText.h"

#include <array>

#include "Support/NumberText.h"

namespace JsonText {

namespace {

/// What a number and its separator usually take, so that a long text grows once.
constexpr std::size_t UsualNumber = 12;

void AppendNumbers(std::string& out, std::string_view name, std::span<const double> values) {
    out.append("\"").append(name).append("\": [");
    AppendFixedList(out, values, ", ");
    out += ']';
}

void BeginChain(std::string& out, std::string_view chain) {
    out.append(R"({"chain": ")").append(chain).append(R"(",)");
}

}  // namespace

std::string Object(std::initializer_list<std::pair<std::string_view, std::string_view>> members) {
    std::string text = "{";
    for (const auto& [name, value] : members) {
        if (text.size() > 1) text += ',';
        text.append("\"").append(name).append("\": \"").append(value).append("\"");
    }
    return text + '}';
}

std::string Status(std::string_view text) {
    return Object({{"status", text}});
}

std::string SavedStatus() {
    return Status("Saved");
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        constexpr std::string_view Escaped = "\n\r\t\"\\", Letters = "nrt\"\\";
        const std::size_t found = Escaped.find(c);
        if (found == std::string_view::npos)
            quoted += c;
        else
            quoted.append(1, '\\').append(1, Letters[found]);
    }
    return quoted + '"';
}

std::string Number(double value) {
    std::string text;
    AppendFixedText(text, value);
    return text;
}

std::string& Array::Next() {
    if (m_text.size() > 1) m_text += ',';
    return m_text;
}

std::string Array::Take() {
    m_text += ']';
    return std::move(m_text);
}

std::string Sweep(const SweepReadout& sweep) {
    return R"({"numOfBins": )" + std::to_string(sweep.bins) + R"(,"numOfSamples": )" + std::to_string(sweep.samples) +
           R"(,"numOfHistogramBuckets": )" + std::to_string(sweep.histogramBuckets) + R"(,"sweepLen": )" +
           std::to_string(sweep.sweepLength) + '}';
}

std::string Spectrum(std::string_view chain, const ChainBuffers& spectrum, const ChainBuffers* average,
                     const ChainBuffers* maxHold) {
    Array objects;
    for (std::size_t k = 0; k < spectrum.Chains(); ++k) {
        std::string& out = objects.Next();
        if (k == 0) out.reserve(spectrum.Chains() * spectrum[0].size() * 3 * UsualNumber);
        BeginChain(out, chain);
        AppendNumbers(out, "data", spectrum[k]);
        for (const auto& [name, bins] : {std::pair{"averageData", average}, {"maxData", maxHold}}) {
            if (!bins) continue;
            out += ", ";
            AppendNumbers(out, name, (*bins)[k]);
        }
        out += '}';
    }
    return objects.Take();
}

std::string ChannelAverage(std::string_view chain, const ChainBuffers& average) {
    std::string out = R"({"chain": ")" + std::string(chain) + '"';
    for (std::size_t k = 0; k < average.Chains(); ++k) {
        out.append(",\"data").append(std::to_string(k)).append("\": [");
        AppendStreamList(out, average[k], ", ");
        out += ']';
    }
    return out + '}';
}

std::string IQ(std::string_view chain, const IQReadout& codes) {
    Array objects;
    for (std::size_t k = 0; k < codes.i.Chains(); ++k) {
        std::string& out = objects.Next();
        if (k == 0) out.reserve(codes.i.Chains() * codes.i[0].size() * 2 * UsualNumber);
        BeginChain(out, chain);
        AppendNumbers(out, "IData", codes.i[k]);
        out += ',';
        AppendNumbers(out, "QData", codes.q[k]);
        out += '}';
    }
    return objects.Take();
}

std::string Histogram(std::string_view chain, const HistogramReadout& counts) {
    Array objects;
    for (std::size_t k = 0; k < counts.both.Chains(); ++k) {
        std::string& out = objects.Next();
        BeginChain(out, chain);
        for (const auto& [name, buckets] :
             {std::pair{"IQData", &counts.both}, {"IData", &counts.i}, {"QData", &counts.q}}) {
            AppendNumbers(out, name, (*buckets)[k]);
            out += ',';
        }
        AppendNumbers(out, "IQMinMax", std::array{counts.ranges[k].first, counts.ranges[k].second});
        out += '}';
    }
    return objects.Take();
}

std::string Peaks(std::string_view chain, const PeaksReadout& peaks) {
    Array objects;
    for (const auto& list : peaks) {
        Array found;
        for (const auto& [frequency, power] : list) {
            std::string& out = found.Next();
            out += R"({"frequency": )";
            AppendFixedText(out, frequency);
            out += R"(,"power": )";
            AppendFixedText(out, power);
            out += '}';
        }
        std::string& out = objects.Next();
        BeginChain(out, chain);
        out.append(R"("data": )").append(found.Take()).append("}");
    }
    return objects.Take();
}

}  // namespace JsonText
