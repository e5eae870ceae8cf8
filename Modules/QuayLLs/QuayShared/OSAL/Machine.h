// Facts about the machine.
#pragma once

#include <cstdint>
#include <string>

namespace OSAL {

std::string GetComputerName();
/// Brand text of the processor as it reports it itself, else as the system knows it; empty when neither does.
std::string GetProcessorBrand();

enum ProcessorArchitecture : std::uint16_t {
    ArchitectureX86 = 0,
    ArchitectureArm = 5,
    ArchitectureX64 = 9,
    ArchitectureArm64 = 12,
    ArchitectureUnknown = 0xFFFF,
};

struct SystemInfo {
    std::uint16_t processorArchitecture = ArchitectureUnknown;
    std::uint32_t pageSize = 0;  // bytes
    void* minimumApplicationAddress = nullptr;
    void* maximumApplicationAddress = nullptr;
    std::uint64_t activeProcessorMask = 0;  // bit n: processor n is online; the first 64 only
    std::uint32_t numberOfProcessors = 0;   // online
    std::uint32_t processorType = 0;        // 586, 8664, or 0 for any other family
    std::uint16_t processorRevision = 0;    // model in the high byte and stepping in the low one, 0 if unknown
};
SystemInfo GetSystemInfo();

}  // namespace OSAL
