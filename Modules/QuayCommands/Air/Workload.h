// Whether a stress workload loads the machine, for airs whose noise rises with it.
#pragma once

#include "RadioSetup.h"

namespace quayCommand {

class WorkloadSense {
public:
    explicit WorkloadSense(Workload setting) : m_setting(setting) {}
    void Set(Workload setting) { m_setting = setting; }
    /// `Auto` looks for the workload's process at each call.
    bool IsRunning() const;

private:
    Workload m_setting;
};

}  // namespace quayCommand
