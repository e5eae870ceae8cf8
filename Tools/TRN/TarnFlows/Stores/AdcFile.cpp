#include "Stores/AdcFile.h"

#include <stdexcept>

#include "CaptureName.h"
#include "Format.h"
#include "SampleReader.h"

namespace AdcFile {

namespace {

using SampleFiles::LineFault;
using SampleFiles::LineState;

/// The failures of the standard conversions, which the bad value of a line ends in.
void ThrowFault(LineState state) {
    if (state.fault == LineFault::NotANumber) throw std::invalid_argument("invalid stod argument");
    if (state.fault == LineFault::OutOfRange) throw std::out_of_range("stod argument out of range");
    if (state.fault == LineFault::TooLong) throw std::length_error(SampleFiles::FaultText(state));
}

}  // namespace

std::string ParseParamFromFilename(const std::string& name, const std::string& key) {
    return SampleFiles::NameParameter(name, key);
}

bool GetParamsFromFilename(const std::string& name, std::string& band, std::string& channel, std::string& bandwidth,
                           std::string& chain) {
    band = ParseParamFromFilename(name, "BAND_");
    if (band.empty()) return false;
    channel = ParseParamFromFilename(name, "CHANNEL_");
    if (channel.empty()) return false;
    bandwidth = ParseParamFromFilename(name, "BW_");
    if (bandwidth.empty()) return false;
    chain = ParseParamFromFilename(name, "CHAIN_");
    return !chain.empty();
}

void SetIQFromLine(double* i, double* q, const std::string& line) {
    ThrowFault(SampleFiles::ReadSampleLine(line, *i, *q));
}

std::optional<std::size_t> ReadAdcFile(const std::string& path, double* i, double* q, std::size_t n) {
    auto reader = SampleFiles::SampleReader::Open(path);
    if (!reader) return std::nullopt;
    const auto stretch = reader->Read({i, n}, {q, n});
    if (stretch.state.fault == LineFault::TooLong)
        throw std::length_error(Common::Format("${1}:${2}: ${3}") % path % (stretch.samples + 1) %
                                SampleFiles::FaultText(stretch.state));
    ThrowFault(stretch.state);
    return stretch.samples;
}

}  // namespace AdcFile
