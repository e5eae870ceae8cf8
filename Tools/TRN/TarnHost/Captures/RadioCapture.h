// Captures straight from the radio's interfaces, in the steps that its generation of chips wants.
#pragma once

#include <vector>

#include "Captures/CapturePlan.h"
#include "OSAL/Outcome.h"
#include "QuayCommands.h"

namespace TarnHost {

/// ADC codes of one chain.
struct Samples {
    std::vector<double> i;
    std::vector<double> q;
};

/// The adapter that CommandFactory gives. Failures of the radio come back as values.
/// Thread: one at a time.
class RadioCapture {
public:
    static OSAL::Outcome<RadioCapture> Open();

    const AdapterAbilities& Abilities() const { return m_abilities; }
    OSAL::Outcome<std::vector<PlanEntry>> Plan();
    /// One capture with gain index 0 and without pre-LNA resistor, which is what an analysis of files assumes.
    OSAL::Outcome<Samples> Capture(const PlanEntry& entry);

private:
    explicit RadioCapture(quayCommand::IWifiCommands* wifi) : m_wifi(wifi) {}
    void TuneTo(const PlanEntry& entry);
    void SetHighestGain();
    bool Read(const PlanEntry& entry, Samples& samples);

    quayCommand::IWifiCommands* m_wifi;
    quayCommand::IAdcCommands* m_adc = nullptr;
    AdapterAbilities m_abilities;
};

}  // namespace TarnHost
