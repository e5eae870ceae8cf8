#include "WorkloadFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "OSAL/Files.h"
#include "OSAL/Paths.h"

namespace TarnWorkload {

namespace {

constexpr std::size_t LongestFile = 1 << 16;

struct NumberKey {
    std::string_view name;
    unsigned Plan::*value;
    unsigned low;
    unsigned high;
};
constexpr std::array<NumberKey, 6> NumberKeys{{{"cpu", &Plan::cpu, 0, 1024},
                                               {"memory", &Plan::memory, 0, 1024},
                                               {"memory_mib", &Plan::memory_mib, 1, 65536},
                                               {"load_percent", &Plan::load_percent, 1, 100},
                                               {"memtest_mib", &Plan::memtest_mib, 0, 65536},
                                               {"limit_s", &Plan::limit_s, 0, 1000000}}};
constexpr std::array<std::string_view, 3> EngineNames{"auto", "stress-ng", "built-in"};

std::vector<std::string_view> Words(std::string_view line) {
    constexpr std::string_view Blanks = " \t\r";
    line = line.substr(0, line.find('#'));
    std::vector<std::string_view> words;
    for (;;) {
        const std::size_t begin = line.find_first_not_of(Blanks);
        if (begin == std::string_view::npos) return words;
        line.remove_prefix(begin);
        const std::size_t end = std::min(line.find_first_of(Blanks), line.size());
        words.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

/// Why the line can't be; empty when it was taken.
std::string Take(const std::vector<std::string_view>& words, Plan& plan) {
    if (words.size() != 2) return "expected KEY VALUE";
    const std::string key(words[0]), text(words[1]);
    if (key == "engine") {
        const auto name = std::ranges::find(EngineNames, words[1]);
        if (name == EngineNames.end()) return "engine: '" + text + "' isn't auto, stress-ng or built-in";
        plan.engine = static_cast<Engine>(name - EngineNames.begin());
        return {};
    }
    const auto row = std::ranges::find(NumberKeys, words[0], &NumberKey::name);
    if (row == NumberKeys.end()) return "unknown key '" + key + "'";
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < row->low || value > row->high)
        return key + ": '" + text + "' isn't a whole number from " + std::to_string(row->low) + " to " +
               std::to_string(row->high);
    plan.*row->value = value;
    return {};
}

}  // namespace

OSAL::Outcome<Plan> ParsePlan(std::string_view text) {
    Plan plan;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const auto words = Words(text.substr(0, end));
        if (!words.empty())
            if (const std::string why = Take(words, plan); !why.empty())
                return OSAL::Refusal{"line " + std::to_string(number) + ": " + why};
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return plan;
}

OSAL::Outcome<Plan> ReadPlan(const std::string& path) {
    std::string folder;
    OSAL::GetModuleDirectory(folder);
    for (const std::string& place : {path, folder + OSAL::FileNameOf(path)}) {
        if (OSAL::IsLink(place)) return OSAL::Refusal{"'" + place + "' is a link"};
        const OSAL::FileHandle file = OSAL::OpenFile(place, OSAL::ReadOnly | OSAL::NoLink, true);
        if (file == OSAL::InvalidFile) continue;
        std::string text(LongestFile + 1, '\0');
        std::size_t size = 0;
        const int status = OSAL::ReadFile(file, 0, text.data(), text.size(), size);
        OSAL::CloseFile(file);
        if (status != OSAL::Success) return OSAL::Refusal{"can't read '" + place + "'"};
        if (size > LongestFile) return OSAL::Refusal{"'" + place + "' is longer than 64 KiB"};
        auto plan = ParsePlan(std::string_view(text).substr(0, size));
        return plan ? plan : OSAL::Refusal{"'" + place + "', " + plan.Reason()};
    }
    return OSAL::Refusal{"can't read '" + path + "'"};
}

std::string Describe(const Plan& plan) {
    std::string text = plan.cpu == 0 ? "all processors" : std::to_string(plan.cpu) + " processor workers";
    text += ", " + std::to_string(plan.memory) + " memory workers of " + std::to_string(plan.memory_mib) + " MiB";
    text += ", each busy " + std::to_string(plan.load_percent) + " % of its time";
    if (plan.memtest_mib > 0) text += ", memory test of " + std::to_string(plan.memtest_mib) + " MiB";
    return text + (plan.limit_s > 0 ? ", for " + std::to_string(plan.limit_s) + " s" : "");
}

}  // namespace TarnWorkload
