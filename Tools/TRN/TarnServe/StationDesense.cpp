// The station while a burn-in desense test runs: the test's lines have the plug-in for themselves but for what only
// reads, and behind the test the settings of before come back.
#include <nlohmann/json.hpp>

#include "OSAL/Machine.h"
#include "RadioSetup.h"
#include "Station.h"

namespace TarnServe {

DesenseSurroundings Station::SurroundingsOfTest() {
    return {.run =
                [this](const std::string& line, std::function<void(TarnMeasure::DesenseAnswer)> done) {
                    m_jobs.push_back({.line = line, .placed = line, .isOwn = true, .answer = std::move(done)});
                    Pump();
                },
            .tell = [this](std::string_view type, const nlohmann::json& data) { Tell(type, data); },
            .hide = [this](const std::string& text) { return m_folder.Hide(text); },
            .changed = [this] { DesenseChanged(); }};
}

OSAL::Outcome<> Station::StartDesense(DesenseOrder order) {
    if (m_isEnding) return OSAL::Refusal{"the server is ending"};
    if (m_scan) return OSAL::Refusal{"a scan is running: stop it first"};
    const auto may = m_desense.MayStart();
    if (!may) return may;
    const auto folder = Archive().Begin(order.name, order.config.Text());
    if (!folder) return folder.Why();
    TarnMeasure::DesenseOrigin origin{.utc = UtcText(std::chrono::system_clock::now()),
                                      .version = TARN_VERSION,
                                      .adapter = quayCommand::DescribeAdapter(),
                                      .air = m_airText,
                                      .platform = OSAL::GetComputerName() + ", " + OSAL::GetProcessorBrand(),
                                      .command = "tarn serve, test " + order.name};
    m_desense.Start(std::move(order), folder->string(), std::move(origin));
    return {};
}

void Station::DesenseChanged() {
    if (!m_desense.IsActive() && !m_isEnding) {
        Settings settings;
        for (const char* key : {"-band", "-bandwidth", "-channel", "-chain", "-rbw", "-channel_average",
                                "-channel_average_sweep_val", "-maxhold"})
            if (const auto entry = m_settings.Values().find(key); entry != m_settings.Values().end())
                settings.insert(*entry);
        const std::string line = SweepBook::LineOf(settings);
        m_jobs.push_back({.line = line, .placed = line, .isOwn = true});
    }
    TellState();
    Pump();
}

TarnMeasure::DesenseAnswer Station::AnswerOf(const TarnSession::Exchange& exchange, const Received& received) const {
    TarnMeasure::DesenseAnswer answer;
    answer.ok = exchange.exitCode == 0;
    if (!answer.ok) answer.error = m_folder.Hide(ErrorSentence(exchange));
    answer.messages = received.messages;
    answer.wereShown = true;
    return answer;
}

}  // namespace TarnServe
