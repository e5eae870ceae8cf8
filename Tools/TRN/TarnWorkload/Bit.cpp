#include "Bit.h"

#include <charconv>
#include <memory>
#include <new>
#include <optional>

#include "BuiltInLoad.h"
#include "Duty.h"
#include "OSAL/Files.h"
#include "OSAL/Paths.h"
#include "OSAL/Process.h"
#include "OSAL/Time.h"

namespace TarnWorkload {

namespace {

constexpr const char* StressNgFolder = "/usr/bin";
constexpr const char* StressNgName = "stress-ng";
constexpr const char* MemTestName = "MemTest64";
constexpr std::uint32_t Check_ms = 200;

constexpr const char* Usage =
    "usage: bit [-T] [-R] -C FILE\n"
    "Loads the machine as FILE says, until it gets SIGTERM or SIGINT or the program that started it is gone.\n"
    "  -C FILE  workload file; one that isn't there is looked for beside this program\n"
    "  -R       run it; without -R the plan is told and nothing runs\n"
    "  -T       tell at the end how long it ran\n";

/// A program that ends with this object, and with this process however that ends.
class Companion {
public:
    Companion(const std::string& folder, const std::string& name, const std::string& arguments) {
        OSAL::ProcessOptions options;
        options.callersConsole = true;
        options.endsWithCaller = true;
        OSAL::StartProcess(folder, name, arguments, m_process, options);
    }
    ~Companion() {
        if (m_process.processId != 0) OSAL::TerminateHandle(m_process);
    }
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;
    bool IsRunning() const { return OSAL::IsRunning(m_process); }

private:
    OSAL::ProcessInformation m_process;
};

bool HasStressNg() {
    return OSAL::FileExists(std::string(StressNgFolder) + "/" + StressNgName);
}

/// Loads until the duty is over. @return why it had to end before; empty: it didn't
std::string Load(const Plan& plan, const Duty& duty) {
    std::unique_ptr<BuiltInLoad> own;
    std::unique_ptr<Companion> stress, memTest;
    const bool usesStressNg = plan.engine == Engine::StressNg || (plan.engine == Engine::Auto && HasStressNg());
    if (usesStressNg)
        stress = std::make_unique<Companion>(StressNgFolder, StressNgName, StressNgArguments(plan));
    else
        own = std::make_unique<BuiltInLoad>(plan);
    if (plan.memtest_mib > 0) {
        std::string folder;
        OSAL::GetModuleDirectory(folder);
        memTest = std::make_unique<Companion>(folder, MemTestName, "-M " + std::to_string(plan.memtest_mib));
    }
    while (!duty.IsOver()) {
        if (stress && !stress->IsRunning()) return "stress-ng isn't running";
        if (memTest && !memTest->IsRunning()) return std::string(MemTestName) + " isn't running";
        duty.Wait(Check_ms);
    }
    return {};
}

}  // namespace

OSAL::Outcome<BitOptions> ReadOptions(const std::vector<std::string>& arguments) {
    BitOptions options;
    for (std::size_t k = 0; k < arguments.size(); ++k) {
        const std::string& argument = arguments[k];
        if (argument == "-R") {
            options.runs = true;
        } else if (argument == "-T") {
            options.timed = true;
        } else if (argument == "-h" || argument == "--help") {
            options.help = true;
        } else if (argument == "-C" && k + 1 < arguments.size()) {
            options.file = arguments[++k];
        } else {
            return OSAL::Refusal{argument == "-C" ? "-C needs a file" : "unknown switch '" + argument + "'"};
        }
    }
    if (options.file.empty() && !options.help) return OSAL::Refusal{"-C FILE is missing"};
    return options;
}

std::string StressNgArguments(const Plan& plan) {
    std::string arguments =
        "--cpu " + std::to_string(plan.cpu) + " --cpu-load " + std::to_string(plan.load_percent) + " --quiet";
    if (plan.memory > 0)
        arguments +=
            " --memrate " + std::to_string(plan.memory) + " --memrate-bytes " + std::to_string(plan.memory_mib) + "M";
    return arguments + " --timeout " + std::to_string(plan.limit_s);
}

int RunBit(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    const auto options = ReadOptions(arguments);
    if (!options) {
        err << "bit: " << options.Reason() << "\n" << Usage;
        return 2;
    }
    if (options->help) {
        out << Usage;
        return 0;
    }
    const auto plan = ReadPlan(options->file);
    if (!plan) {
        err << "bit: " << plan.Reason() << "\n";
        return 1;
    }
    out << "bit: " << Describe(*plan) << std::endl;
    if (!options->runs) return 0;
    const Duty duty(plan->limit_s);
    const OSAL::Stopwatch watch;
    try {
        if (const std::string why = Load(*plan, duty); !why.empty()) {
            err << "bit: " << why << std::endl;
            return 1;
        }
    } catch (const std::bad_alloc&) {
        err << "bit: there isn't that much memory" << std::endl;
        return 1;
    }
    if (options->timed) out << "bit: ended after " << watch.ElapsedMs() / 1000.0 << " s" << std::endl;
    return 0;
}

int RunMemTest(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    std::size_t mib = 0;
    const bool isUsed = arguments.size() == 2 && arguments[0] == "-M";
    if (isUsed) std::from_chars(arguments[1].data(), arguments[1].data() + arguments[1].size(), mib);
    if (mib == 0 || mib > 65536) {
        err << "usage: MemTest64 -M MIB    (1 to 65536)\n";
        return 2;
    }
    const Duty duty(0);
    // A piece at a time, so that an end is never far.
    constexpr std::size_t PieceWords = 1 << 17;
    std::vector<std::vector<std::uint64_t>> pieces(mib, std::vector<std::uint64_t>(PieceWords));
    std::uint64_t pattern = 0x5555555555555555;
    for (std::size_t at = 0; !duty.IsOver(); at = (at + 1) % mib) {
        if (const std::size_t wrong = TestMemory(pieces[at], pattern)) {
            err << "MemTest64: " << wrong << " words of piece " << at << " read otherwise" << std::endl;
            return 1;
        }
        if (at + 1 == mib) pattern = ~pattern;
    }
    out << "MemTest64: no word read otherwise" << std::endl;
    return 0;
}

}  // namespace TarnWorkload
