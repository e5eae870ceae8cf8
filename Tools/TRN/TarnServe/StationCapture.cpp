// A stored capture in the place of a sweep: analysed with the tuning that its name tells, and shown to everybody.
#include <nlohmann/json.hpp>

#include "CaptureName.h"
#include "SampleReader.h"
#include "Station.h"

namespace TarnServe {

OSAL::Outcome<> Station::Analyse(const std::string& name, LineDone done) {
    if (m_scan) return OSAL::Refusal{"a scan is running: stop it first"};
    if (const auto isFree = m_desense.MayStart(); !isFree) return isFree;
    if (!SampleFiles::ReadCaptureName(name))
        return OSAL::Refusal{"'" + name.substr(0, 80) +
                             "' doesn't tell its tuning: a capture's name is like "
                             "BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt"};
    const auto stage = m_folder.StageFor(name);
    if (!stage) return stage.Why();
    const std::string key = "-read_adc_samples_from_file ";
    return Queue({.line = key + name, .placed = key + "\"" + *stage + "\"", .done = std::move(done), .capture = name});
}

/// The line of a capture is done: its tuning holds from here on, its results are read out, and no sweep takes their
/// place until somebody asks for one.
OSAL::Outcome<> Station::TakeCapture(const Job& job, const TarnSession::Exchange& exchange) {
    const bool isAnalysed = m_folder.TakeResultOf(job.capture);
    if (!isAnalysed || exchange.exitCode != 0) {
        if (exchange.exitCode == 0) RestoreTuning();  // a line that failed has done it
        std::string why = SampleFiles::BadLine(m_folder.PathOf(job.capture).string());
        if (why.empty()) why = exchange.exitCode != 0 ? m_folder.Hide(ErrorSentence(exchange)) : "it gives no result";
        return OSAL::Refusal{"'" + job.capture + "' can't be analysed: " + why};
    }
    const auto tuning = SampleFiles::ReadCaptureName(job.capture).value_or(SampleFiles::CaptureName{});
    m_settings.Set("-band", tuning.band);
    m_settings.Set("-bandwidth", tuning.bandwidth);
    m_settings.Set("-channel", tuning.channel);
    m_settings.Set("-chain", tuning.chain);
    m_book.TakeLine("", m_settings.Values(), UtcText(std::chrono::system_clock::now()));
    m_mode = Mode::Hold;
    m_source = job.capture;
    const std::string line = "-update_spectrum -update_iq -update_histogram";
    m_jobs.push_front({.line = line, .placed = line, .isOwn = true});
    return {};
}

}  // namespace TarnServe
