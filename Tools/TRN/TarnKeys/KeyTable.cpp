#include "KeyTable.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "ChannelPlan.h"

namespace TarnKeys {
namespace {

constexpr auto Int = ArgumentKind::Int;
constexpr auto Double = ArgumentKind::Double;
constexpr auto Text = ArgumentKind::Text;
constexpr auto File = ArgumentKind::File;
constexpr auto Folder = ArgumentKind::Folder;
using enum KeyRole;

constexpr std::string_view Analysis = "Analysis";
constexpr std::string_view Look = "Results";
constexpr std::string_view Files = "Files";
constexpr std::string_view Setting = "Settings";
constexpr std::string_view Gain = "Gain and floor";
constexpr std::string_view Device = "Device";
constexpr std::string_view Run = "Measuring";
constexpr std::string_view Desense = "Burn-in desense test";

constexpr KeyArgument None{};
constexpr KeyArgument FlagText{Text, "FLAG", "true|false"};
constexpr KeyArgument FileName{File, "FILE"};
constexpr bool Spoils = true;
/// What the default configuration sets back.
constexpr std::string_view Tuning = "-band|-bandwidth|-channel|-chain|-gain_file_name";
/// What the plain variant's test leaves as its last sweep had it.
constexpr std::string_view TestTuning =
    "-band|-bandwidth|-channel|-chain|-rbw|-maxhold|-channel_average|-channel_average_sweep_val";

#define COMMON_KEY(operation, ...) {__VA_ARGS__},
#define WIFI_KEY(operation, ...) {__VA_ARGS__},
constexpr auto table = std::to_array<KeyRow>({
#include "KeyRows.h"
});
#undef COMMON_KEY
#undef WIFI_KEY

bool SameLetters(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b,
                              [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

std::span<const KeyRow> Keys() {
    return table;
}

const KeyRow* FindKey(std::string_view name) {
    const auto row = std::ranges::find_if(table, [&](const KeyRow& key) { return SameLetters(key.name, name); });
    return row == table.end() ? nullptr : &*row;
}

bool ReadsBeforeTrigger(const KeyRow& key) {
    if (key.role != ReadsOut && key.role != WritesFile) return false;
    return &key < &*std::ranges::find(table, Triggers, &KeyRow::role);
}

}  // namespace TarnKeys
