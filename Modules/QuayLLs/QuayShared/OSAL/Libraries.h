// Libraries that are loaded by name while the program runs, and the test of a file's signature.
#pragma once

#include <cstdint>
#include <string>

namespace OSAL {

/// A library by its name, loaded when it is first needed. Thread: one at a time.
class Library {
public:
    /// @param name  a path; a name or path that doesn't start at the root is looked for beside the host program, and
    ///              never in the current folder or on a search path
    explicit Library(std::string name) : m_name(std::move(name)) {}
    ~Library() { Free(); }
    Library(Library&& other) noexcept;
    Library& operator=(Library&& other) noexcept;

    /// Tries when it isn't loaded yet; false and a `Reason` when it can't be.
    bool Load();
    bool IsLoaded() const { return m_handle != nullptr; }
    /// Loads it if need be. Null when library or entry is missing.
    void* GetProcAddress(const char* entry);
    void Free();
    /// Leaves it loaded for good: for libraries with threads of their own.
    void Keep() { m_handle = nullptr; }
    const std::string& Name() const { return m_name; }
    const std::string& Reason() const { return m_reason; }

private:
    std::string m_name;
    std::string m_reason;
    void* m_handle = nullptr;
};

/// Results of a signature test.
enum TrustResult : std::uint32_t {
    TrustGood = 0,
    TrustOutOfMemory = 0x80004008,
    TrustFileError = 0x80092003,  // the file can't be read
    TrustBadDigest = 0x80096010,  // the signature is another file's, or another key's
    TrustNoSignature = 0x800B0100,
};

/// Tests the detached signature that stands beside a file as "FILE.sig": SHA-256 and the key's own scheme, as
/// "openssl dgst -sha256 -sign KEY -out FILE.sig FILE" makes it.
class WinTrustApi {
public:
    /// @param trustedKey  the public key in PEM form; only who may change this file decides what is trusted
    explicit WinTrustApi(std::string trustedKey = "/etc/tarn/trusted.pem") : m_trustedKey(std::move(trustedKey)) {}

    /// Of a file beside the host program. @return a `TrustResult`
    std::uint32_t VerifyFile(const std::string& name) const;
    /// Without the file's signature, the trusted key or the tool there is no signature.
    std::uint32_t Verify(const std::wstring& path) const;
    /// Loads a library beside the host program if its signature is good; one that can't be loaded is returned
    /// unloaded, with its reason.
    Library LoadSignedLibrary(const std::string& name) const;

private:
    std::string m_trustedKey;
};

}  // namespace OSAL
