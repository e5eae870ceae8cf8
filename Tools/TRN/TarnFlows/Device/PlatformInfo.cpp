#include "Device/PlatformInfo.h"

#include <cstdint>
#include <locale>
#include <sstream>

#include "OSAL/OSAL.h"

namespace {

std::string ArchitectureText(std::uint16_t architecture) {
    switch (architecture) {
        case OSAL::ArchitectureX86:
            return "x86";
        case OSAL::ArchitectureArm:
            return "ARM";
        case 6:
            return "IA64";
        case OSAL::ArchitectureX64:
            return "x64";
        case OSAL::ArchitectureArm64:
            return "ARM64";
        case OSAL::ArchitectureUnknown:
            return "unknown";
        default:
            return "";
    }
}

std::string PointerText(const void* pointer) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << pointer;
    return text.str();
}

}  // namespace

std::array<PlatformFact, 9> DescribePlatform() {
    const OSAL::SystemInfo info = OSAL::GetSystemInfo();
    return {{
        {"CPU string", "cpuString", OSAL::GetProcessorBrand()},
        {"Computer name", "computerName", OSAL::GetComputerName()},
        {"Architecture", "archType", ArchitectureText(info.processorArchitecture)},
        {"Number of processors", "numOfProcessors", std::to_string(info.numberOfProcessors)},
        {"wProcessorRevision", "wProcessorRevision", std::to_string(info.processorRevision)},
        {"Processor type", "processorType", std::to_string(info.processorType)},
        {"Min app address", "minAppAddr", PointerText(info.minimumApplicationAddress)},
        {"Max app address", "maxAppAddr", PointerText(info.maximumApplicationAddress)},
        {"Active processor mask", "activeProcessorMask", std::to_string(info.activeProcessorMask)},
    }};
}
