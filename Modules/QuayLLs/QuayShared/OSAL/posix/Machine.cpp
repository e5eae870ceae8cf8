// Facts about the machine, as near as Linux knows them.
#include <sched.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstring>
#include <fstream>
#include <string_view>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#define TARN_HAS_CPUID 1
#endif

#include "OSAL/Machine.h"

namespace OSAL {

namespace {

constexpr std::uint16_t OwnArchitecture() {
#if defined(__x86_64__)
    return ArchitectureX64;
#elif defined(__i386__)
    return ArchitectureX86;
#elif defined(__aarch64__)
    return ArchitectureArm64;
#elif defined(__arm__)
    return ArchitectureArm;
#else
    return ArchitectureUnknown;
#endif
}

#ifdef TARN_HAS_CPUID
std::string BrandByCpuid() {
    constexpr unsigned first = 0x80000002, last = 0x80000004;
    if (const unsigned highest = __get_cpuid_max(0x80000000, nullptr); highest < last) return {};
    std::array<unsigned, 12> words{};
    for (unsigned leaf = first, i = 0; leaf <= last; ++leaf, i += 4)
        __get_cpuid(leaf, &words[i], &words[i + 1], &words[i + 2], &words[i + 3]);
    std::array<char, sizeof words + 1> text{};
    std::memcpy(text.data(), words.data(), sizeof words);
    return text.data();
}

std::uint16_t Revision() {
    unsigned signature = 0, unused = 0;
    if (!__get_cpuid(1, &signature, &unused, &unused, &unused)) return 0;
    const unsigned stepping = signature & 0xF;
    const unsigned model = ((signature >> 4) & 0xF) | ((signature >> 12) & 0xF0);
    return static_cast<std::uint16_t>(model << 8 | stepping);
}
#else
std::string BrandByCpuid() {
    return {};
}

std::uint16_t Revision() {
    return 0;
}
#endif

std::string BrandBySystem() {
    std::ifstream facts("/proc/cpuinfo");
    for (std::string line; std::getline(facts, line);)
        if (line.starts_with("model name"))
            if (const auto colon = line.find(": "); colon != std::string::npos) return line.substr(colon + 2);
    return {};
}

/// Lowest address that a program may map.
std::uintptr_t LowestAddress() {
    std::uintptr_t lowest = 0;
    std::ifstream("/proc/sys/vm/mmap_min_addr") >> lowest;
    return lowest ? lowest : 65536;
}

/// Last byte of a program's address space: 47 bits on x64, 48 on 64-bit ARM, 3 of 4 GiB on 32-bit systems, the top page
/// being the system's own.
std::uintptr_t HighestAddress(std::uintptr_t pageSize) {
    constexpr auto architecture = OwnArchitecture();
    if constexpr (architecture == ArchitectureX64) return (std::uintptr_t{1} << 47) - pageSize - 1;
    if constexpr (architecture == ArchitectureArm64) return (std::uintptr_t{1} << 48) - pageSize - 1;
    return std::uintptr_t{0xC0000000} - pageSize - 1;
}

std::uint64_t LowestBits(unsigned count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// Reads a list such as "0-3,6"; the lowest `count` processors when there is none.
std::uint64_t OnlineMask(unsigned count) {
    std::ifstream list("/sys/devices/system/cpu/online");
    std::uint64_t mask = 0;
    for (unsigned first = 0; list >> first;) {
        unsigned last = first;
        if (list.peek() == '-') list.ignore() >> last;
        for (unsigned processor = first; processor <= last && processor < 64; ++processor)
            mask |= std::uint64_t{1} << processor;
        list.ignore();
    }
    return mask ? mask : LowestBits(count);
}

}  // namespace

std::string GetComputerName() {
    std::array<char, 257> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

std::string GetProcessorBrand() {
    const auto brand = BrandByCpuid();
    return brand.empty() ? BrandBySystem() : brand;
}

SystemInfo GetSystemInfo() {
    SystemInfo info;
    const auto processors = sysconf(_SC_NPROCESSORS_ONLN);
    info.processorArchitecture = OwnArchitecture();
    info.pageSize = static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE));
    info.minimumApplicationAddress = reinterpret_cast<void*>(LowestAddress());
    info.maximumApplicationAddress = reinterpret_cast<void*>(HighestAddress(info.pageSize));
    info.numberOfProcessors = processors > 0 ? static_cast<std::uint32_t>(processors) : 1;
    info.activeProcessorMask = OnlineMask(info.numberOfProcessors);
    info.processorType = OwnArchitecture() == ArchitectureX64 ? 8664 : OwnArchitecture() == ArchitectureX86 ? 586 : 0;
    info.processorRevision = Revision();
    return info;
}

}  // namespace OSAL
