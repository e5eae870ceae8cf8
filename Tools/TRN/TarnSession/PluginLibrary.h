// The plug-in library, loaded at run time and known by its two exports only.
#pragma once

#include <string>

#include "ITrellisPlugin.h"
#include "OSAL/Outcome.h"

namespace TarnSession {

/// The library stays loaded to the end of the process.
class PluginLibrary {
public:
    /// Looks beside the executable, then in the library folder of an installation; TARN_PLUGIN names another file.
    static OSAL::Outcome<PluginLibrary> Load();

    /// Owned by the library until Destroy(); null when there is no memory.
    ITrellisPlugin* Create(IHostOutput* host, bool web) const { return m_create(host, web); }
    void Destroy() const { m_destroy(); }
    const std::string& Path() const { return m_path; }

private:
    PluginLibrary() = default;

    std::string m_path;
    CreateInstanceFunction* m_create = nullptr;
    DestroyInstanceFunction* m_destroy = nullptr;
};

}  // namespace TarnSession
