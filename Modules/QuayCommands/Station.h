// The adapter in use with all that hangs on it, made from a set-up.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Adapter/Recorder.h"
#include "Adapter/SimulatedAdapter.h"
#include "Air/Air.h"
#include "Air/Workload.h"
#include "Monitor/MonitoredRadio.h"
#include "RadioSetup.h"

namespace quayCommand {

/// Adapter, air, journal and fault plan of one set-up. Never moves: its parts point at each other.
class Station {
public:
    /// @return the reason when the set-up is refused, else `out` is filled
    static std::optional<std::string> Make(const RadioSetup& setup, std::unique_ptr<Station>& out);

    IWifiCommands* Wifi() { return &m_wifi; }
    NvmCommands* Nvm() { return &m_nvm; }
    std::string AdapterDescriptionText() const { return AdapterText(m_adapter); }
    std::string AirText() const { return m_air->Describe(); }
    std::optional<std::string> Trouble() const { return m_journal.Trouble(); }
    const AdapterDescription& Adapter() const { return m_adapter; }
    const OSAL::Outcome<CaptureFacts>& LastCapture() { return m_bareWifi.GetAdcObject()->LastCapture(); }
    OSAL::Outcome<Recording> Record(const RecordRequest& request) { return RecordFrom(m_wifi, LastCapture(), request); }
    bool SetWorkload(bool running);

private:
    Station(AdapterDescription adapter, std::unique_ptr<WorkloadSense> workload, std::unique_ptr<IAir> air,
            FaultPlan faults);

    AdapterDescription m_adapter;
    std::unique_ptr<WorkloadSense> m_workload;  ///< the air asks it
    std::unique_ptr<IAir> m_air;
    Journal m_journal;
    FaultPlan m_faults;
    CallMonitor m_monitor{m_journal, m_faults, [this] { m_bareWifi.GetAdcObject()->LoseTuning(); }};
    SimulatedWifi m_bareWifi;
    SimulatedNvm m_bareNvm;
    MonitoredWifi m_wifi;
    MonitoredNvm m_nvm;
};

}  // namespace quayCommand
