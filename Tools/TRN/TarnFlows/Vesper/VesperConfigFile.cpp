#include "Vesper/VesperConfigFile.h"

#include <algorithm>

#include "OSAL/Files.h"
#include "Streams/Trace.h"
#include "Support/FlowText.h"

using Streams::ThrowLogged;

namespace {

/// More than nine lines of any sense hold.
constexpr std::size_t LongestFile = 1 << 20;
constexpr const char* Unparsed = "Failed to parse file";

/// The first nine lines.
std::vector<std::string> ReadLines(const std::string& path, const char* function) {
    const OSAL::FileHandle file = OSAL::OpenFile(path, OSAL::ReadOnly | OSAL::NoLink, true);
    std::string text(LongestFile, '\0');
    std::size_t size = 0;
    const int status = OSAL::ReadFile(file, 0, text.data(), text.size(), size);
    OSAL::CloseFile(file);
    if (status != OSAL::Success) ThrowLogged(function, Unparsed);
    text.resize(size);
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size() && lines.size() < VesperParamCount;) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string& line = lines.emplace_back(text, at, end - at);
        if (line.ends_with('\r')) line.pop_back();
        at = end + 1;
    }
    if (lines.size() < VesperParamCount) ThrowLogged(function, Unparsed);
    return lines;
}

}  // namespace

VesperParam StringToVesperParam(std::string_view key) {
    const auto& keys = TarnKeys::TestConfigKeys;
    const auto found = std::ranges::find(keys, key);
    if (found == keys.end()) ThrowLogged("StringToVesperParam", "Invalid parameter name");
    return static_cast<VesperParam>(found - keys.begin());
}

std::vector<std::string> ParseVesperConfigFile(const std::string& path) {
    TRACE_SCOPE("TarnWifiFlows::ParseVesperConfigFile");
    if (OSAL::IsLink(path)) ThrowLogged(traceFunctionName, Common::Format("File ${1} is a link") % path);
    std::vector<std::string> values(VesperParamCount);
    for (std::string& line : ReadLines(path, traceFunctionName)) {
        std::vector<std::string> tokens = FlowText::SplitString(line, ",");
        if (tokens.size() < 2) ThrowLogged(traceFunctionName, Unparsed);
        const VesperParam param = StringToVesperParam(tokens[0]);
        std::string& value = tokens[1];
        if (param >= VesperParamLowBand) value = value.size() < 2 ? "" : value.substr(1, value.size() - 2);
        values[param] = std::move(value);
    }
    return values;
}
