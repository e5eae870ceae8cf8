// Dumps of the engine's buffers to text files. Each text is built whole and written at once.
#include <algorithm>
#include <charconv>

#include "LumenSA.h"
#include "LumenSABuffers.h"
#include "OSAL/OSAL.h"
#include "Streams/Trace.h"

namespace LumenSpectrumAnalyzer {

namespace {

/// The caller isn't told of a file that can't be written; log and error stream are.
void WriteText(const char* traceFunctionName, const std::string& path, const std::string& text) {
    if (const auto written = OSAL::WriteWholeFile(path, text); !written) REPORT_FAILURE(written.Reason());
}

/// `value` without its fraction, and a comma. `at` has room for 16 characters.
char* AppendWhole(char* at, double value) {
    at = std::to_chars(at, at + 15, static_cast<std::int32_t>(value)).ptr;
    *at++ = ',';
    return at;
}

}  // namespace

void CLmnSA::DumpIQ(const std::string& file) {
    TRACE_SCOPE("CLmnSA::DumpIQ");
    static constexpr std::size_t PairRoom = 32;
    std::string text;
    if (m_NumChains > 0) RequireSamples();
    const int chains = std::max(m_NumChains, 0);
    std::vector<char> line(PairRoom * static_cast<std::size_t>(chains) + 1);
    text.reserve(m_NumOfSamples * (static_cast<std::size_t>(chains) * 12 + 1));
    for (std::uint32_t k = 0; k < m_NumOfSamples; ++k) {
        char* at = line.data();
        for (int c = 0; c < chains; ++c) {
            const double* const pair = m_CurrSweep[c]->val + 2 * std::size_t{k};
            at = AppendWhole(AppendWhole(at, pair[0]), pair[1]);
        }
        *at++ = '\n';
        text.append(line.data(), at);
    }
    WriteText(traceFunctionName, file, text);
}

void CLmnSA::DumpSpectrum(const std::string& file) {
    TRACE_SCOPE("CLmnSA::DumpSpectrum");
    DumpEnergy(file, LmnSAExportType::Spectrum);
}

void CLmnSA::DumpMaxHold(const std::string& file) {
    TRACE_SCOPE("CLmnSA::DumpMaxHold");
    DumpEnergy(file, LmnSAExportType::MaxHold);
}

void CLmnSA::DumpEnergy(const std::string& file, LmnSAExportType type) {
    TRACE_SCOPE("CLmnSA::DumpEnergy");
    if (m_NumChains > 0) RequireBuffers();
    const bool maxHold = type == LmnSAExportType::MaxHold;
    const bool known = maxHold || type == LmnSAExportType::Spectrum;
    const int chains = known ? std::max(m_NumChains, 0) : 0;
    std::array<const double*, MaxChains> source{};
    for (int c = 0; c < chains; ++c)
        source[c] = maxHold ? ChannelBuffer(m_MaxHold, c) : m_Spectrum[c]->val;
    std::string text;
    const std::uint32_t bins = chains ? m_NumOfBins : 0;
    for (std::uint32_t k = 0; k < bins; ++k) {
        for (int c = 0; c < chains; ++c) {
            TRACE(Streams::TraceDebug,
                  maxHold ? "Export type is LmnSAExportType::MaxHold" : "Export type is LmnSAExportType::Spectrum");
            text += Common::ToStreamText(source[c][k]);
            text += ',';
        }
    }
    WriteText(traceFunctionName, file, text);
}

void CLmnSA::DumpSpectrumByRBW(const std::string& file) {
    TRACE_SCOPE("CLmnSA::DumpSpectrumByRBW");
    if (m_NumChains > 0) RequireBuffers();
    std::string tail;  // the fields that all lines share
    for (const std::string& field : {Common::ToStreamText(m_RBW), std::to_string(m_Bandwidth),
                                     Common::ToStreamText(m_SampleRate), OSAL::FormatLocalTime("%d/%m/%Y %H:%M:%S")})
        tail += ", " + field;
    int start = 0;
    int end = 0;
    CalculateFreqIndices(m_Bandwidth, m_SampleRate, m_NumOfBins, &start, &end);
    std::string text = "Channel,Chain,Power,RBW,BW,Sample Rate,Trigger Time\n";
    for (int c = 0; c < m_NumChains; ++c) {
        const std::string name = m_ChainName != "AB" ? m_ChainName : c == 0 ? "A" : "B";
        double frequency = BandStart();
        for (int k = start; k < end; ++k, frequency += m_RBW / 1000.0) {
            const double power = m_Spectrum[c]->val[k];
            if (power != 0.0)
                text.append(Common::ToStreamText(frequency))
                    .append(", ")
                    .append(name)
                    .append(", ")
                    .append(Common::ToStreamText(power))
                    .append(tail);
            text += '\n';
        }
    }
    WriteText(traceFunctionName, file, text);
}

void CLmnSA::DumpPeaks(const std::string& file) {
    TRACE_SCOPE("CLmnSA::DumpPeaks");
    std::string text = "Frequency,Power\n";
    for (int c = 0; c < std::min<int>(m_NumChains, MaxChains); ++c) {
        if (m_Peaks && m_Peaks[c])
            for (const auto& [frequency, power] : *m_Peaks[c])
                text.append(Common::ToStreamText(frequency))
                    .append(",")
                    .append(Common::ToStreamText(power))
                    .append("\n");
        text += '\n';
    }
    WriteText(traceFunctionName, file, text);
}

}  // namespace LumenSpectrumAnalyzer
