#include "Web/TarnWifiFlowsWeb.h"
#include "Caught.h"
#include "Streams/Trace.h"

using Streams::TraceInfo;

void TarnWifiFlowsWeb::OutputObject(std::string type, std::string data) {
    TRACE_SCOPE("TarnWifiFlowsWeb::OutputObject");
    data.insert(0, R"({"type": ")" + type + R"(", "data": )");
    data += '}';
    if (m_host) m_host->OutputObject(std::move(data));
    m_response.clear();
}

void TarnWifiFlowsWeb::Send(const char* traceFunctionName, const std::string& type, std::string data) {
    TRACE(TraceInfo, "Before outputting " + type);
    OutputObject(type, std::move(data));
    TRACE(TraceInfo, "After outputting " + type);
}

std::string TarnWifiFlowsWeb::BandText(std::uint32_t band) {
    if (band >= RadioFacts::BandCount) return {};
    const RadioFacts::Band& row = RadioFacts::Bands[band];
    return std::string(row.otherName.empty() ? row.name : row.otherName);
}

void TarnWifiFlowsWeb::ReportFailure(const char* traceFunctionName, const char* failure) {
    const Common::Caught dropped;
    TRACE(TraceInfo, failure);
    TRACE(TraceInfo, dropped.TextOr("unknown exception"));
    OutputError(failure);
}
