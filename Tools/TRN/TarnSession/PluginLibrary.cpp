#include "PluginLibrary.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "OSAL/Libraries.h"
#include "OSAL/OSAL.h"

namespace TarnSession {
namespace {

namespace fs = std::filesystem;

constexpr const char* libraryName = "libTarnFlows.so";

std::vector<fs::path> Candidates() {
    if (const char* named = std::getenv("TARN_PLUGIN"); named && *named) return {fs::absolute(named)};
    std::string folder;
    if (OSAL::GetModuleDirectory(folder) != OSAL::Success) return {};
    return {fs::path(folder) / libraryName, fs::path(folder) / ".." / TARN_LIBRARY_FOLDER / libraryName};
}

}  // namespace

OSAL::Outcome<PluginLibrary> PluginLibrary::Load() {
    std::string tried;
    for (const fs::path& path : Candidates()) {
        std::error_code error;
        if (!fs::exists(path, error)) {
            tried += (tried.empty() ? "" : ", ") + path.lexically_normal().string();
            continue;
        }
        PluginLibrary library;
        library.m_path = path.lexically_normal().string();
        OSAL::Library loaded(library.m_path);
        if (!loaded.Load()) return OSAL::Refusal{"can't load the plug-in: " + loaded.Reason()};
        library.m_create = reinterpret_cast<CreateInstanceFunction*>(loaded.GetProcAddress("CreateInstance"));
        library.m_destroy = reinterpret_cast<DestroyInstanceFunction*>(loaded.GetProcAddress("DestroyInstance"));
        loaded.Keep();
        if (!library.m_create || !library.m_destroy)
            return OSAL::Refusal{"'" + library.m_path + "' is no plug-in: it lacks CreateInstance or DestroyInstance"};
        return library;
    }
    return OSAL::Refusal{"can't find the plug-in (looked for " + tried + "; TARN_PLUGIN names another file)"};
}

}  // namespace TarnSession
