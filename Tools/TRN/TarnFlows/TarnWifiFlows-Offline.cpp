// Stored captures in the place of a receiver: a folder of sample files into its result.csv.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "OSAL/OSAL.h"
#include "Stores/AdcFile.h"
#include "Support/FlowFailure.h"
#include "Support/NumberText.h"
#include "TarnWifiFlows.h"

using Streams::TraceError;
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

/// The table of powers in the analysed folder. A folder that can't be written loses its lines but not the analysis.
class ResultFile {
public:
    explicit ResultFile(const std::string& folder) : m_path(folder + "/result.csv") {}

    void Create() const { Write("FILE_NAME, POWER, BAND, CH, BW, CHAIN,\n", std::ios::trunc); }
    void Append(const std::string& line) const { Write(line, std::ios::app); }

private:
    void Write(const std::string& text, std::ios::openmode mode) const {
        // Opening a pipe or a device that bears the name could wait for ever.
        std::error_code error;
        const auto type = std::filesystem::status(m_path, error).type();
        if (type == std::filesystem::file_type::not_found || type == std::filesystem::file_type::regular) {
            std::ofstream file(m_path, std::ios::out | std::ios::binary | mode);
            file << text;
            file.close();
            if (file) return;
        }
        constexpr const char* traceFunctionName = "TarnWifiFlows::ReadADCSamplesFromFile";
        TRACE(TraceError, Common::Format("Failed to write file: ${1}") % m_path);
    }

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
        ResultFile(folder).Create();
    }
    const std::string answer = m_response;
    OfflineBuffers buffers(numOfSamples);
    for (const std::string& name : names)
        AnalyzeAdcFile(folder, name, buffers);
    m_response = answer;  // the resets on the way reported on the default gain file; a scan answers nothing
}

void TarnWifiFlows::AnalyzeAdcFile(const std::string& folder, const std::string& name, OfflineBuffers& buffers) {
    TRACE_SCOPE("TarnWifiFlows::ReadADCSamplesFromFile");
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
