#include "OSAL/CFile.h"

#include <algorithm>

#include "OSAL/Files.h"
#include "OSAL/Paths.h"

namespace OSAL {

namespace {
/// Whether the path can be opened for writing without waiting; the file stands there afterwards.
bool IsWritable(const std::string& path) {
    const FileHandle file = OpenFile(path, Append, true);
    CloseFile(file);
    return file != InvalidFile;
}

}  // namespace

std::string CFile::GetFullPath() const {
    const SyncObjectsOSAL::Entered guard(m_lock);
    return m_path;
}

void CFile::GetFileName(char* out) const {
    constexpr std::size_t bufferSize = 260;
    const SyncObjectsOSAL::Entered guard(m_lock);
    const auto length = m_name.copy(out, bufferSize - 1);
    out[length] = '\0';
}

bool CFile::Open() {
    const SyncObjectsOSAL::Entered guard(m_lock);
    try {
        if (!m_directory.empty() && !CreateDirectory(m_directory)) return false;
        m_stream.close();
        m_stream.clear();
        if (!IsWritable(m_path)) return false;
        m_stream.open(m_path, std::ios_base::out | std::ios_base::trunc | std::ios_base::binary);
        return m_stream.is_open();
    } catch (const std::exception&) {
        return false;
    }
}

bool CFile::Write(const std::vector<std::string>& strings) {
    const SyncObjectsOSAL::Entered guard(m_lock);
    for (const auto& text : strings)
        m_stream << text;
    return true;
}

bool CFile::Write(const std::string& text) {
    const SyncObjectsOSAL::Entered guard(m_lock);
    m_stream << text;
    return true;
}

bool CFile::WriteLine(const std::string& text) {
    const SyncObjectsOSAL::Entered guard(m_lock);
    m_stream << text << "\r\n";
    return true;
}

void CFile::Close() {
    const SyncObjectsOSAL::Entered guard(m_lock);
    m_stream.close();
}

void CFile::SetPath(const std::string& path) {
    const SyncObjectsOSAL::Entered guard(m_lock);
    m_path = path;
    m_directory = DirectoryOf(path);
    const auto file = FileNameOf(path);
    m_name = StemOf(file);
    m_extension = file.substr(m_name.size());
}

void CFile::Rename(const std::string& newName) {
    const SyncObjectsOSAL::Entered guard(m_lock);
    m_name = newName;
    m_path = m_directory + m_name + m_extension;
    m_stream.close();
    m_stream.clear();
    if (IsWritable(m_path)) m_stream.open(m_path, std::ios_base::out | std::ios_base::app | std::ios_base::binary);
    if (!m_stream.is_open()) throw std::ios_base::failure("Couldn't open file");
}

}  // namespace OSAL
