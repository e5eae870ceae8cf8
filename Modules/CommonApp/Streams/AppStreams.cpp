#include "Streams/AppStreams.h"

#include <algorithm>
#include <string_view>

#include "Format.h"

namespace Streams {

namespace {

using LogLock = SyncObjectsOSAL::Locked<SyncObjectsOSAL::ILock>;

const std::uint64_t startTicks = OSAL::GetTickCount();

AppStreams& Shared() {
    return *SingletonWrapper<AppStreams>::accessObject();
}

std::ostream& OrNull(std::ostream* stream) {
    return stream ? *stream : Shared().nullOut;
}

}  // namespace

AppStreams::~AppStreams() {
    logStream = nullptr;
}

std::ostream& AppStreams::GetError() {
    return OrNull(Shared().errorStream);
}

std::ostream& AppStreams::GetOutput() {
    return OrNull(Shared().outputStream);
}

std::ostream& AppStreams::GetTrace() {
    return OrNull(Shared().traceStream);
}

std::ostream& AppStreams::GetLog() {
    return OrNull(Shared().logStream);
}

std::istream& AppStreams::GetInput() {
    auto& streams = Shared();
    return streams.inputStream ? *streams.inputStream : streams.nullIn;
}

std::ostream& AppStreams::GetDebug(std::uint64_t level) {
    const auto& streams = Shared();
    return streams.debugMask & level ? GetDebug() : OrNull(streams.detailStream);
}

std::ostream& AppStreams::GetDebug() {
    const auto& streams = Shared();
    return OrNull(streams.debugStream ? streams.debugStream : streams.detailStream);
}

std::string AppStreams::GetLogPath() {
    const LogLock guard(GetLock());
    return Shared().logPath;
}

SyncObjectsOSAL::ILock& AppStreams::GetLock() {
    return Shared().lock;
}

bool AppStreams::OpenLogFile(const std::string& path, std::ios_base::openmode mode) {
    auto& streams = Shared();
    auto opened = std::make_unique<LogFile>();
    const LogLock guard(GetLock());
    opened->Open(path, mode);
    const bool isOpen = opened->good();
    // only asked why the opening failed: it refused the link itself
    if (!isOpen && OSAL::IsLink(path)) return false;
    streams.logStream = opened.get();
    streams.m_ownLog = std::move(opened);
    streams.logPath = path;
    return isOpen;
}

void AppStreams::CloseLogFile() {
    auto& streams = Shared();
    const LogLock guard(GetLock());
    streams.logStream = nullptr;
    streams.m_ownLog.reset();
}

void AppStreams::StreamDevice::Write(const char* text) {
    const SyncObjectsOSAL::ScopedLock guard(&m_lock);
    GetTrace() << Common::ToDecimalText(OSAL::GetTickCount() - startTicks, 10, 6) << ": " << (text ? text : "")
               << std::endl;
}

std::string PaddedRight(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

std::string DumpHex(const void* bytes, std::size_t length, bool withText) {
    constexpr std::size_t bytesPerLine = 16, columns = 3 * bytesPerLine;
    if (!bytes) return {};
    const std::string_view all(static_cast<const char*>(bytes), length);
    std::string dump;
    for (std::size_t at = 0; at < length; at += bytesPerLine) {
        const auto part = all.substr(at, bytesPerLine);
        std::string line, text;
        for (const char c : part) {
            const auto byte = static_cast<unsigned char>(c);
            line += Common::ToDecimalText(byte, 16, 2) + ' ';
            text += byte < 32 ? '.' : c;
        }
        dump += PaddedRight(line, columns);
        if (withText) dump += " | " + text;
        dump += '\n';
    }
    return dump;
}

}  // namespace Streams
