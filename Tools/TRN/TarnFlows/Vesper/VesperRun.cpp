#include "Vesper/VesperRun.h"

#include <span>

void RunVesperSteps(const VesperSettings& settings, const std::vector<VesperBand>& bands,
                    const std::function<void(const VesperStep&)>& sweep) {
    std::vector<std::string> chains{settings.m_vesperChainMode == VesperBothChains ? "AB" : "A"};
    if (settings.m_vesperChainMode == VesperAThenB) chains.emplace_back("B");
    for (const VesperBand& band : bands)
        for (const ChannelRow& row : std::span(band.rows).subspan(band.rows.empty() ? 0 : 1))
            for (const std::string& chain : chains)
                for (std::int32_t i = 1; i <= settings.m_vesperIterations; ++i)
                    sweep({band.band, row, chain, i});
}
