#include "Web/TarnWifiFlowsWeb.h"

#include "Streams/Trace.h"

void TarnWifiFlowsWeb::OutputObject(std::string type, std::string data) {
    TRACE_SCOPE("TarnWifiFlowsWeb::OutputObject");
    std::string message;
    message.reserve(type.size() + data.size() + 24);
    message.append(R"({"type": ")").append(type).append(R"(", "data": )").append(data).append("}");
    if (m_host) m_host->OutputObject(std::move(message));
    m_response.clear();
}
