// A text output file that several threads may write to.
#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "OSAL/Locks.h"

namespace OSAL {

/// Thread: each operation holds the file's lock.
class CFile {
public:
    explicit CFile(const std::string& path) { CFile::SetPath(path); }
    virtual ~CFile() = default;
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    virtual std::string GetFullPath() const;
    /// Copies the name, without folder and extension, into a buffer of 260 characters, cut to 259 and a zero.
    virtual void GetFileName(char* out) const;
    /// Makes the folder if need be, and opens the file anew and empty.
    virtual bool Open();
    virtual bool Write(const std::vector<std::string>& strings);
    virtual bool Write(const std::string& text);
    /// The text and "\r\n".
    virtual bool WriteLine(const std::string& text);
    virtual void Close();
    /// Takes another path without opening it. An open file stays open.
    virtual void SetPath(const std::string& path);
    /// Goes on under another name in the same folder, with the same extension, at the end of that file.
    /// @throws std::ios_base::failure "Couldn't open file"
    virtual void Rename(const std::string& newName);

private:
    mutable SyncObjectsOSAL::CriticalSectionOSAL m_lock;
    std::ofstream m_stream;
    std::string m_path;
    std::string m_directory;  // with its closing separator
    std::string m_name;
    std::string m_extension;  // with its dot
};

}  // namespace OSAL
