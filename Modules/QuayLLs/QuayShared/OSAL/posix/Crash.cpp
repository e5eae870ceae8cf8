// Crash reports. The handler runs in a program that may have broken anything: it calls only what the system allows
// there, takes no memory, and works on what was prepared when it was installed.
#include "OSAL/Crash.h"

#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "OSAL/Errors.h"

namespace OSAL {

namespace {

struct CrashContext {
    int signal;
    const siginfo_t* info;
    const ucontext_t* context;
};

/// A text of bounded length, made without the library.
class Text {
public:
    Text& operator<<(std::string_view text) {
        const std::size_t count = std::min(text.size(), m_text.size() - 1 - m_size);
        std::memcpy(m_text.data() + m_size, text.data(), count);
        m_size += count;
        return *this;
    }
    Text& Number(std::uint64_t value, unsigned digits = 1, unsigned base = 10) {
        std::array<char, 20> reversed;
        unsigned count = 0;
        for (; value > 0 || count < digits; value /= base)
            reversed[count++] = "0123456789abcdef"[value % base];
        while (count > 0)
            *this << std::string_view(&reversed[--count], 1);
        return *this;
    }
    Text& Hex(std::uint64_t value) { return (*this << "0x").Number(value, 16, 16); }
    std::string_view View() const { return {m_text.data(), m_size}; }
    const char* CString() const { return m_text.data(); }

private:
    std::array<char, 4096> m_text{};
    std::size_t m_size = 0;
};

/// What the handler needs and can't find out when it runs.
struct Prepared {
    std::array<char, 3072> folder{};  // with its closing separator
    long utcOffset = 0;               // seconds
} prepared;

std::atomic_flag isReporting = ATOMIC_FLAG_INIT;

void Put(int file, std::string_view text) {
    while (!text.empty()) {
        const auto count = write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

void Prepare() {
    const std::string folder = CrashFolder();
    folder.copy(prepared.folder.data(), prepared.folder.size() - 1);
    const time_t now = time(nullptr);
    tm local{};
    localtime_r(&now, &local);
    prepared.utcOffset = local.tm_gmtoff;
    std::array<void*, 2> frames;
    backtrace(frames.data(), static_cast<int>(frames.size()));  // loads what it needs now, not in a crash
}

/// Year, month and day of a day counted from 1970-01-01 (H. Hinnant, "chrono-compatible low-level date algorithms").
Text& AppendDate(Text& text, std::int64_t day) {
    day += 719468;
    const std::int64_t era = day / 146097, dayOfEra = day % 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shifted = (5 * dayOfYear + 2) / 153;  // months from March on
    const std::int64_t month = shifted < 10 ? shifted + 3 : shifted - 9;
    const auto number = [](std::int64_t value) { return static_cast<std::uint64_t>(value); };
    text.Number(number(yearOfEra + era * 400 + (month <= 2 ? 1 : 0)), 4).Number(number(month), 2);
    return text.Number(number(dayOfYear - (153 * shifted + 2) / 5 + 1), 2);
}

/// The report's name, without folder: "20240131-235959-PROCESS-THREAD.dmp".
void AppendName(Text& path) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t local = now.tv_sec + prepared.utcOffset, second = local % 86400;
    const auto part = [&](std::int64_t value) { path.Number(static_cast<std::uint64_t>(value), 2); };
    AppendDate(path, local / 86400) << "-";
    part(second / 3600);
    part(second / 60 % 60);
    part(second % 60);
    (path << "-").Number(static_cast<std::uint64_t>(getpid())) << "-";
    path.Number(static_cast<std::uint64_t>(syscall(SYS_gettid))) << ".dmp";
}

/// A new file that only this user can read, in a folder that everybody may put files into, as in the temp folder.
int OpenReport(const Text& path) {
    Text folderPath;
    folderPath << prepared.folder.data();
    if (mkdir(folderPath.CString(), 0700) == 0) chmod(folderPath.CString(), 01777);
    const int folder = open(folderPath.CString(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) return -1;
    const char* const name = path.CString() + folderPath.View().size();
    const int file = openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    close(folder);
    return file;
}

void PutRegisters(int file, const ucontext_t& context) {
#if defined(__x86_64__)
    constexpr std::pair<const char*, int> registers[] = {
        {"rip", REG_RIP}, {"rsp", REG_RSP}, {"rbp", REG_RBP}, {"rax", REG_RAX}, {"rbx", REG_RBX}, {"rcx", REG_RCX},
        {"rdx", REG_RDX}, {"rsi", REG_RSI}, {"rdi", REG_RDI}, {"r8", REG_R8},   {"r9", REG_R9},   {"r10", REG_R10},
        {"r11", REG_R11}, {"r12", REG_R12}, {"r13", REG_R13}, {"r14", REG_R14}, {"r15", REG_R15}, {"eflags", REG_EFL},
    };
    for (const auto& [name, index] : registers) {
        Text line;
        line << name << " ";
        Put(file, (line.Hex(static_cast<std::uint64_t>(context.uc_mcontext.gregs[index])) << "\n").View());
    }
#elif defined(__aarch64__)
    Text ends;
    (ends << "pc ").Hex(context.uc_mcontext.pc) << "\nsp ";
    Put(file, (ends.Hex(context.uc_mcontext.sp) << "\n").View());
    for (unsigned k = 0; k < 31; ++k) {
        Text line;
        (line << "x").Number(k) << " ";
        Put(file, (line.Hex(context.uc_mcontext.regs[k]) << "\n").View());
    }
#else
    static_cast<void>(context);
    Put(file, "not known on this processor\n");
#endif
}

void PutFile(int file, const char* path) {
    const int source = open(path, O_RDONLY | O_CLOEXEC);
    std::array<char, 4096> piece;
    for (;;) {
        const auto count = read(source, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        Put(file, {piece.data(), static_cast<std::size_t>(count)});
    }
    if (source >= 0) close(source);
}

const char* NameOf(int signal) {
    constexpr std::pair<int, const char*> names[] = {
        {SIGSEGV, "SIGSEGV"}, {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},
        {SIGILL, "SIGILL"},   {SIGABRT, "SIGABRT"}, {SIGSYS, "SIGSYS"},
    };
    for (const auto& [number, name] : names)
        if (number == signal) return name;
    return "";
}

/// False when there is no such report.
bool WriteReport(const CrashContext* crash, Text& path) {
    path << prepared.folder.data();
    AppendName(path);
    const int file = OpenReport(path);
    if (file < 0) return false;
    if (crash) {
        Text head;
        (head << "signal ").Number(static_cast<std::uint64_t>(crash->signal)) << " " << NameOf(crash->signal);
        (head << "\naddress ").Hex(reinterpret_cast<std::uintptr_t>(crash->info->si_addr));
        Put(file, (head << "\n\nregisters\n").View());
        PutRegisters(file, *crash->context);
    }
    Put(file, "\ncall stack\n");
    std::array<void*, 128> frames;
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), static_cast<int>(frames.size())), file);
    Put(file, "\nmemory map\n");
    PutFile(file, "/proc/self/maps");
    return close(file) == 0;
}

void OnCrash(int signal, siginfo_t* info, void* context) {
    struct sigaction usual {};
    usual.sa_handler = SIG_DFL;
    if (isReporting.test_and_set()) {  // another thread crashed first and ends the program when its report is written
        timespec second{1, 0};
        nanosleep(&second, nullptr);
    } else {
        const CrashContext crash{signal, info, static_cast<const ucontext_t*>(context)};
        Text path, said;
        if (WriteReport(&crash, path))
            said << "crashed; the report is " << path.View() << "\n";
        else
            said << "crashed; no report could be written to " << prepared.folder.data() << "\n";
        Put(STDERR_FILENO, said.View());
    }
    // With its usual action back, the instruction that failed fails again; a signal that was sent is sent again.
    sigaction(signal, &usual, nullptr);
    if (info->si_code <= 0 || signal == SIGABRT) raise(signal);
}

/// Where a thread's crash is handled.
class CrashStack {
public:
    CrashStack() {
        m_stack.ss_size = 256 * 1024;
        m_stack.ss_sp = mmap(nullptr, m_stack.ss_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m_stack.ss_sp != MAP_FAILED) sigaltstack(&m_stack, &m_before);
    }
    ~CrashStack() {
        if (m_stack.ss_sp == MAP_FAILED || getpid() == syscall(SYS_gettid))
            return;  // the first one's serves to the end
        sigaltstack(&m_before, nullptr);
        munmap(m_stack.ss_sp, m_stack.ss_size);
    }
    CrashStack(const CrashStack&) = delete;
    CrashStack& operator=(const CrashStack&) = delete;

private:
    stack_t m_stack{}, m_before{};
};

}  // namespace

std::string CrashFolder() {
    std::error_code error;
    const auto temp = std::filesystem::temp_directory_path(error);
    return (error ? std::filesystem::path("/tmp") : temp).string() + "/Crash/";
}

int WriteCrashDump(const void* exceptionPointers) {
    OutputDebugString("caught exception");
    Prepare();
    Text path;
    if (WriteReport(static_cast<const CrashContext*>(exceptionPointers), path))
        OutputDebugString((std::string("writing dump file to ") + path.CString()).c_str());
    return 1;
}

void PrepareCrashStack() {
    thread_local const CrashStack stack;
}

void InstallCrashReports() {
    Prepare();
    PrepareCrashStack();
    struct sigaction report {};
    report.sa_sigaction = &OnCrash;
    report.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&report.sa_mask);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS}) {
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
            sigaction(signal, &report, nullptr);
    }
}

}  // namespace OSAL
