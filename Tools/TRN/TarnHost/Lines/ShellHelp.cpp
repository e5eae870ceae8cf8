#include "Lines/ShellHelp.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

#include "KeyTable.h"
#include "Lines/Suggest.h"
#include "PlainText.h"

namespace TarnHost {
namespace {

namespace fs = std::filesystem;
using TarnKeys::KeyRow;

constexpr auto ownCommands =
    std::to_array<std::string_view>({"help", "exit", "quit", "!help", "!open", "!quit", "!raw", "!repeat", "!status"});

constexpr std::string_view beginning =
    "A line holds keys and their values; whatever their order, settings take effect before the trigger.\n"
    "The reading keys (-update_..., -get_...) run before it too: send them on a line of their own.\n"
    "Try one after the other:\n\n"
    "  -band 2.4 -bandwidth 20 -channel 6 -trigger_now     tune and capture one sweep\n"
    "  -get_power_per_chain A                              its channel power\n"
    "  -find_peaks 10                                      search the strongest lines\n"
    "  -update_peaks                                       and show them\n\n"
    "Tab completes keys, values and file names; the arrow keys bring earlier lines back.\n\n"
    "  help keys           lists all keys\n"
    "  help KEY            what a key takes, such as: help -rbw\n"
    "  !repeat N LINE      run a line N times; Ctrl-C ends it\n"
    "  !status             adapter, air, and the settings made here\n"
    "  !open KEY=VALUE,... another adapter;  !open sim:SCENE or file:PATH  another air\n"
    "  !raw on|off         answers as the plug-in gives them, or made readable\n"
    "  !quit               also quit, exit, !exit and Ctrl-D\n";

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string Usage(const KeyRow& key) {
    std::string text(key.name);
    if (!key.argument.placeholder.empty()) text += " " + std::string(key.argument.placeholder);
    return text;
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        if (end > 0) parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

constexpr std::size_t mostCandidates = 200;

void Add(Completion& completion, std::string candidate) {
    std::string& start = completion.start;
    if (completion.candidates.empty())
        start = candidate;
    else
        start.erase(std::ranges::mismatch(start, candidate).in1, start.end());
    if (completion.candidates.size() < mostCandidates)
        completion.candidates.push_back(std::move(candidate));
    else
        ++completion.more;
}

/// Entries of the folder that `word` points into, each with `word`'s own spelling of the folder.
void AddFiles(Completion& completion, const std::string& word) {
    const auto slash = word.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : word.substr(0, slash + 1);
    std::error_code error, ignored;
    for (fs::directory_iterator at(folder.empty() ? "." : folder, error), end; !error && at != end;
         at.increment(error)) {
        const std::string name = folder + at->path().filename().string();
        const bool isHidden = at->path().filename().string().starts_with('.');
        // a name that no token can hold, or that would steer the terminal, can't be offered
        const bool isOdd = name.find_first_of(" \"") != std::string::npos || TarnMeasure::Printable(name) != name;
        if (isHidden || !name.starts_with(word) || isOdd) continue;
        Add(completion, at->is_directory(ignored) ? name + "/" : name);
    }
}

void AddWords(Completion& completion, const std::vector<std::string>& words, const std::string& word) {
    const std::string start = Lower(word);
    for (const std::string& candidate : words)
        if (Lower(candidate).starts_with(start)) Add(completion, candidate);
}

std::vector<std::string> KeyNames() {
    std::vector<std::string> names;
    for (const KeyRow& key : TarnKeys::Keys())
        names.emplace_back(key.name);
    return names;
}

}  // namespace

std::string HelpText() {
    return std::string(beginning);
}

std::string KeyListText() {
    std::string text;
    std::size_t width = 0;
    std::vector<std::string_view> headings;
    for (const KeyRow& key : TarnKeys::Keys()) {
        width = std::max(width, Usage(key).size());
        if (std::ranges::find(headings, key.heading) == headings.end()) headings.push_back(key.heading);
    }
    for (const std::string_view heading : headings) {
        text += (text.empty() ? "" : "\n") + std::string(heading) + "\n";
        for (const KeyRow& key : TarnKeys::Keys()) {
            if (key.heading != heading) continue;
            std::string usage = Usage(key);
            usage.resize(width, ' ');
            text += "  " + usage + "  " + std::string(key.help) + "\n";
        }
    }
    return text;
}

std::string HelpText(std::string_view name) {
    if (name == "keys") return KeyListText();
    const std::string asked = name.starts_with('-') ? std::string(name) : "-" + std::string(name);
    if (const KeyRow* key = TarnKeys::FindKey(asked)) {
        std::string text = Usage(*key) + "\n  " + std::string(key->help) + "\n";
        if (!key->argument.values.empty()) {
            text += "  values:";
            for (const std::string& value : Split(key->argument.values, '|'))
                text += " " + value;
            text += "\n";
        }
        return text;
    }
    std::string near;
    const std::string part = Lower(asked.substr(1));
    for (const KeyRow& key : TarnKeys::Keys())
        if (Lower(key.name).find(part) != std::string::npos || Lower(key.help).find(part) != std::string::npos)
            near += "  " + Usage(key) + "  " + std::string(key.help) + "\n";
    const std::string none = "There is no key " + asked + ".";
    return near.empty() ? none + " help keys lists them all.\n" : none + " These come near:\n" + near;
}

std::string Meant(std::string_view line) {
    const std::vector<std::string> words = Split(line, ' ');
    if (words.empty()) return {};
    const auto key = std::ranges::find_if(words, [](const std::string& word) { return word.starts_with('-'); });
    auto names = KeyNames();
    names.insert(names.end(), ownCommands.begin(), ownCommands.end());
    const std::string& word = key == words.end() ? words.front() : *key;
    return TarnKeys::FindKey(word) ? std::string() : DidYouMean(word, names);
}

Completion Complete(std::string_view beforeCursor) {
    using TarnKeys::ArgumentKind;
    const auto blank = beforeCursor.find_last_of(" \t");
    const std::string word(blank == std::string_view::npos ? beforeCursor : beforeCursor.substr(blank + 1));
    const std::vector<std::string> before =
        Split(blank == std::string_view::npos ? std::string_view() : beforeCursor.substr(0, blank), ' ');
    const KeyRow* key = before.empty() ? nullptr : TarnKeys::FindKey(before.back());
    const ArgumentKind kind = key ? key->argument.kind : ArgumentKind::None;
    Completion completion;
    if (kind == ArgumentKind::File || kind == ArgumentKind::Folder) {
        AddFiles(completion, word);
    } else if (kind != ArgumentKind::None) {
        AddWords(completion, Split(key->argument.values, '|'), word);
    } else {
        AddWords(completion, KeyNames(), word);
        if (before.empty()) AddWords(completion, {ownCommands.begin(), ownCommands.end()}, word);
    }
    std::ranges::sort(completion.candidates);
    return completion;
}

}  // namespace TarnHost
