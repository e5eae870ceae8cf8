// Stored captures in the place of a receiver: a folder of sample files into its result.csv.
#include <algorithm>

#include "OSAL/OSAL.h"
#include "Stores/AdcFile.h"
#include "Streams/Trace.h"
#include "Support/NumberText.h"
#include "TarnWifiFlows.h"

using Streams::ThrowLogged;
using Streams::TraceInfo;

/// Vectors of one file's chain; chains 1 and 2, without data, share one that stays zero. One file at a time is in
/// memory, and its vectors serve the next one.
struct TarnWifiFlows::OfflineBuffers {
    explicit OfflineBuffers(std::size_t length) : i(length), q(length), none(length) {}

    std::vector<double> i;
    std::vector<double> q;
    std::vector<double> none;
};

namespace {

/// The table of powers in the analysed folder, a line a file as soon as it is analysed. A folder that can't be written
/// loses its lines but not the analysis.
class ResultFile {
public:
    explicit ResultFile(const std::string& folder) : m_path(folder + "/result.csv") {}

    const std::string& Path() const { return m_path; }
    void Create() const {
        if (const auto made = OSAL::WriteWholeFile(m_path, "FILE_NAME, POWER, BAND, CH, BW, CHAIN,\n"); !made)
            REPORT_FAILURE(made.Reason());
    }
    void Append(const std::string& line) const {
        const OSAL::FileHandle file = OSAL::OpenFile(m_path, OSAL::Append | OSAL::NoLink, true);
        std::size_t written = 0;
        if (OSAL::WriteFile(file, line.data(), line.size(), written) != OSAL::Success)
            REPORT_FAILURE("can't write '" + m_path + "': a line is lost");
        OSAL::CloseFile(file);
    }

private:
    static constexpr const char* traceFunctionName = "TarnWifiFlows::ReadADCSamplesFromFile";
    std::string m_path;
};

}  // namespace

void TarnWifiFlows::ReadADCSamplesFromFile(std::string folder) {
    TRACE_SCOPE("TarnWifiFlows::ReadADCSamplesFromFile");
    std::vector<std::string> names;
    std::size_t numOfSamples = 0;
    {
        const SyncObjectsOSAL::Locked locked(*m_fileLock);
        if (OSAL::IsLink(folder)) ThrowLogged(traceFunctionName, Common::Format("File ${1} is a link") % folder);
        numOfSamples = Sampler().GetNumOfSamples();
        names = OSAL::ListDirectory(folder);
        if (names.empty()) {
            TRACE(TraceInfo, Common::Format("No valid files were found in folder ${1}") % folder);
            return;
        }
        const ResultFile result(folder);
        if (OSAL::IsLink(result.Path()))
            ThrowLogged(traceFunctionName, Common::Format("File ${1} is a link") % result.Path());
        result.Create();
    }
    const std::string answer = m_response;
    OfflineBuffers buffers(numOfSamples);
    for (const std::string& name : names)
        AnalyzeAdcFile(folder, name, buffers);
    m_response = answer;  // the resets on the way reported on the default gain file; a scan answers nothing
}

void TarnWifiFlows::AnalyzeAdcFile(const std::string& folder, const std::string& name, OfflineBuffers& buffers) {
    constexpr const char* traceFunctionName = "TarnWifiFlows::ReadADCSamplesFromFile";  // one of its steps
    std::string band, channel, bandwidth, chain;
    if (!AdcFile::GetParamsFromFilename(name, band, channel, bandwidth, chain)) {
        TRACE(TraceInfo, Common::Format("${1} is not a valid file. Skipping to next file.") % name);
        return;
    }
    SetOptions(band, bandwidth, channel, chain);

    const auto lines = AdcFile::ReadAdcFile(folder + "/" + name, buffers.i.data(), buffers.q.data(), buffers.i.size());
    if (!lines) return;
    // Behind a short file's last line stands silence, not the file before it.
    std::fill(buffers.i.begin() + static_cast<std::ptrdiff_t>(*lines), buffers.i.end(), 0.0);
    std::fill(buffers.q.begin() + static_cast<std::ptrdiff_t>(*lines), buffers.q.end(), 0.0);

    SetManualGainConfig();
    double* none = buffers.none.data();
    std::array<double*, 3> i{buffers.i.data(), none, none};
    std::array<double*, 3> q{buffers.q.data(), none, none};
    Sampler().HandOverSamples(i.data(), q.data(), static_cast<unsigned>(buffers.i.size()));

    std::string line = name + ",";
    AppendStreamText(line, Engine().GetChannelPowerPerChain(0));
    for (const std::string& field : {band, channel, bandwidth, chain})
        line += "," + field;
    ResultFile(folder).Append(line + ",\n");
}
