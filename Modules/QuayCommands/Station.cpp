#include "Station.h"

#include "AirKinds.h"

namespace quayCommand {

Station::Station(AdapterDescription adapter, std::unique_ptr<WorkloadSense> workload, std::unique_ptr<IAir> air,
                 FaultPlan faults)
    : m_adapter(std::move(adapter)),
      m_workload(std::move(workload)),
      m_air(std::move(air)),
      m_faults(std::move(faults)),
      m_bareWifi(m_adapter, *m_air),
      m_bareNvm(m_adapter),
      m_wifi(m_bareWifi, m_monitor),
      m_nvm(m_bareNvm, m_monitor) {}

std::optional<std::string> Station::Make(const RadioSetup& setup, std::unique_ptr<Station>& out) {
    auto adapter = ReadAdapter(setup.adapter);
    if (adapter.IsRefused()) return adapter.Reason();
    auto faults = FaultPlan::Read(setup.faults);
    if (faults.IsRefused()) return faults.Reason();
    auto workload = std::make_unique<WorkloadSense>(setup.workload);
    auto air = OpenAir(setup.air, {adapter.Value().seed, setup.storedTuning, workload.get()});
    if (air.IsRefused()) return air.Reason();
    std::unique_ptr<Station> station(new Station(std::move(adapter.Value()), std::move(workload),
                                                 std::move(air.Value()), std::move(faults.Value())));
    // Last, so that a refused set-up never empties a journal.
    if (auto reason = station->m_journal.Open(setup.journalPath)) return reason;
    out = std::move(station);
    return {};
}

bool Station::SetWorkload(bool running) {
    if (!m_air->Abilities().hearsWorkload) return false;
    m_workload->Set(running ? Workload::On : Workload::Off);
    return true;
}

}  // namespace quayCommand
