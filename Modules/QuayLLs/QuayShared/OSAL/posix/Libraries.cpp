// Libraries by dlopen; signatures by the openssl program.
#include "OSAL/Libraries.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <new>
#include <utility>

#include "OSAL/Errors.h"
#include "OSAL/Paths.h"
#include "OSAL/Process.h"

namespace OSAL {

namespace {

constexpr const char* tool = "/usr/bin/openssl";

/// A path from the root, so that nothing is searched for; empty when the host program's folder isn't known.
std::string Placed(const std::string& name) {
    std::string folder;
    if (name.starts_with('/')) return name;
    if (name.empty() || GetModuleDirectory(folder) != Success) return {};
    return folder + name;
}

bool IsReadable(const std::string& path) {
    return access(path.c_str(), R_OK) == 0;
}

}  // namespace

Library::Library(Library&& other) noexcept
    : m_name(std::move(other.m_name)),
      m_reason(std::move(other.m_reason)),
      m_handle(std::exchange(other.m_handle, nullptr)) {}

Library& Library::operator=(Library&& other) noexcept {
    std::swap(m_name, other.m_name);
    std::swap(m_reason, other.m_reason);
    std::swap(m_handle, other.m_handle);
    return *this;
}

bool Library::Load() {
    if (m_handle) return true;
    const std::string path = Placed(m_name);
    if (!path.empty()) m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    const char* const why = path.empty() ? "no such library" : m_handle ? nullptr : dlerror();
    m_reason = why ? why : "";
    return m_handle != nullptr;
}

void* Library::GetProcAddress(const char* entry) {
    return Load() ? dlsym(m_handle, entry) : nullptr;
}

void Library::Free() {
    if (m_handle) dlclose(std::exchange(m_handle, nullptr));
}

std::uint32_t WinTrustApi::VerifyFile(const std::string& name) const {
    return Verify(std::filesystem::path(Placed(name)).wstring());
}

std::uint32_t WinTrustApi::Verify(const std::wstring& path) const {
    try {
        const std::string file = std::filesystem::path(path).string(), signature = file + ".sig";
        if (!IsReadable(file)) return TrustFileError;
        if (!IsReadable(signature) || !IsReadable(m_trustedKey) || access(tool, X_OK) != 0) return TrustNoSignature;
        const int status =
            RunProgram({tool, "dgst", "-sha256", "-verify", m_trustedKey, "-signature", signature, file});
        if (status < 0) return TrustNoSignature;
        return status == 0 ? TrustGood : TrustBadDigest;
    } catch (const std::bad_alloc&) {
        return TrustOutOfMemory;
    } catch (const std::exception&) {
        return TrustFileError;  // a path that this system can't spell
    }
}

Library WinTrustApi::LoadSignedLibrary(const std::string& name) const {
    Library library(name);
    if (VerifyFile(name) == 0) library.Load();
    return library;
}

}  // namespace OSAL
