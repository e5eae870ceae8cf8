#include "OSAL/Memory.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <utility>

#include "OSAL/Errors.h"
#include "OSAL/Time.h"

namespace OSAL {

namespace {

std::string Narrow(const wchar_t* name) {
    return name ? std::filesystem::path(name).string() : std::string();
}

}  // namespace

SharedMemory::SharedMemory(const wchar_t* name, std::uint64_t size)
    : SharedMemory(name ? Narrow(name).c_str() : nullptr, size) {}

SharedMemory::SharedMemory(const char* name, std::uint64_t size) : m_size(size) {
    if (!name || !*name) {
        OutputDebugString("SharedMemory - Invalid Argument! Must pass a spesific name");
        return;
    }
    try {
        const std::string text = name;
        m_name = "Global\\" + text;
        m_lock = std::make_unique<NamedLock>((text + "Read").c_str());
        m_dataReady = std::make_unique<NamedEvent>(text + "DataReady");
    } catch (const std::bad_alloc&) {
        OutputDebugString("SharedMemory - Error when allocation memory for copying name");
    } catch (const exception&) {
        m_lock.reset();  // its text went to the debug output
    }
    Open();
}

void SharedMemory::Open() {
    IsOpen();
}

bool SharedMemory::IsOpen() {
    if (!m_lock || !m_dataReady) return false;
    const SyncObjectsOSAL::Entered guard(*m_lock);
    if (m_block || m_closed) return m_block != nullptr;
    if (m_size > 0) m_block = SharedBlock::Open(m_name, m_size);
    if (!m_block) OutputDebugString("Could not create\\open file mapping object");
    return m_block != nullptr;
}

std::int32_t SharedMemory::Read(std::vector<std::byte>& buffer, std::uint64_t& size) {
    if (!IsOpen()) return NotOpen;
    if (size > m_size) return Refused;
    if (size == 0) size = m_size;
    buffer.assign(size, std::byte{0});
    const SyncObjectsOSAL::Entered guard(*m_lock);
    if (!m_block) return Refused;
    std::memcpy(buffer.data(), m_block->Data(), size);
    return Done;
}

std::int32_t SharedMemory::Read(std::string& text) {
    if (!IsOpen()) return NotOpen;
    text.clear();
    const SyncObjectsOSAL::Entered guard(*m_lock);
    if (!m_block) return Refused;
    const auto* begin = reinterpret_cast<const char*>(m_block->Data());
    text.assign(begin, std::find(begin, begin + m_size, '\0'));
    return Done;
}

std::int32_t SharedMemory::Write(const void* data, std::uint64_t size) {
    if (!IsOpen()) return NotOpen;
    if (size > m_size) return TooLarge;
    {
        const SyncObjectsOSAL::Entered guard(*m_lock);
        if (!m_block) return Refused;
        if (data)
            std::memcpy(m_block->Data(), data, size);
        else
            std::memset(m_block->Data(), 0, size);
        if (data) m_dataReady->Set();
    }
    Sleep::MilliSec(1);
    return Done;
}

bool SharedMemory::WaitForData(std::uint32_t timeoutMs) {
    return m_dataReady && m_dataReady->Wait(timeoutMs);
}

void SharedMemory::Close() {
    if (!m_lock || !m_dataReady) return;
    const SyncObjectsOSAL::Entered guard(*m_lock);
    if (std::exchange(m_closed, true)) return;
    m_dataReady->Set();
    m_block.reset();
}

}  // namespace OSAL
