#include "PluginLibrary.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "OSAL/OSAL.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;

constexpr const char* libraryName = "libTarnFlows.so";

std::vector<fs::path> Candidates() {
    if (const char* named = std::getenv("TARN_PLUGIN"); named && *named) return {fs::absolute(named)};
    std::string folder;
    if (OSAL::GetModuleDirectory(folder) != OSAL::Success) return {};
    return {fs::path(folder) / libraryName, fs::path(folder) / ".." / TARN_LIBRARY_FOLDER / libraryName};
}

template <typename Function>
Function* Symbol(void* library, const char* name) {
    return reinterpret_cast<Function*>(::dlsym(library, name));
}

}  // namespace

Result<PluginLibrary> PluginLibrary::Load() {
    std::string tried;
    for (const fs::path& path : Candidates()) {
        std::error_code error;
        if (!fs::exists(path, error)) {
            tried += (tried.empty() ? "" : ", ") + path.lexically_normal().string();
            continue;
        }
        PluginLibrary library;
        library.m_path = path.lexically_normal().string();
        void* handle = ::dlopen(library.m_path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!handle) return Failure{std::string("can't load the plug-in: ") + ::dlerror()};
        library.m_create = Symbol<CreateInstanceFunction>(handle, "CreateInstance");
        library.m_destroy = Symbol<DestroyInstanceFunction>(handle, "DestroyInstance");
        if (!library.m_create || !library.m_destroy)
            return Failure{"'" + library.m_path + "' is no plug-in: it lacks CreateInstance or DestroyInstance"};
        return library;
    }
    return Failure{"can't find the plug-in (looked for " + tried + "; TARN_PLUGIN names another file)"};
}

}  // namespace TarnHost
