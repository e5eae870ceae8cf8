#include "Publisher/ListenerConfiguration.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>
#include <sstream>

#include "OSAL/Files.h"
#include "OSAL/Paths.h"
#include "OSAL/Process.h"
#include "OSAL/WholeFile.h"

namespace Publisher {

namespace {

constexpr const char* publisherSection = "QuayPubilsher";
constexpr const char* listenerSection = "QuayListener";
constexpr const char* fileName = "ListenerConfiguration.ini";
constexpr std::size_t sectionLimit = 519, valueLimit = 259;

using Lines = std::vector<std::string>;

std::string Trimmed(const std::string& text) {
    constexpr const char* blanks = " \t\r\n";
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

bool IsSameWord(const std::string& a, const std::string& b) {
    return std::ranges::equal(a, b,
                              [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

/// No text when the file can't be read; of a longer one the first mebibyte.
std::optional<std::string> TextOf(const std::string& path) {
    constexpr std::size_t limit = 1 << 20;
    const OSAL::FileHandle file = OSAL::OpenFile(path, OSAL::ReadOnly, true);
    if (file == OSAL::InvalidFile) return std::nullopt;
    std::string text(limit, '\0');
    std::size_t got = 0;
    const bool isRead = OSAL::ReadFile(file, 0, text.data(), text.size(), got) == OSAL::Success;
    OSAL::CloseFile(file);
    text.resize(got);
    return isRead ? std::optional(text) : std::nullopt;
}

/// The lines of a section, without empty ones and those that are comments; none when it is missing.
std::optional<Lines> SectionOf(const std::string& text, const std::string& name) {
    std::optional<Lines> lines;
    bool isInside = false;
    std::istringstream stream(text);
    for (std::string raw; std::getline(stream, raw);) {
        const std::string line = Trimmed(raw);
        if (line.starts_with('[')) {
            isInside = !lines && IsSameWord(line.substr(1, line.find(']') - 1), name);
            if (isInside) lines.emplace();
        } else if (isInside && !line.empty() && line[0] != ';') {
            lines->push_back(line);
        }
    }
    return lines;
}

/// The line that sets a key; the end when none does.
Lines::const_iterator LineOf(const Lines& lines, const std::string& key) {
    return std::ranges::find_if(lines, [&](const std::string& line) {
        const auto equals = line.find('=');
        return equals != std::string::npos && IsSameWord(Trimmed(line.substr(0, equals)), key);
    });
}

/// The line with another value: what stands from behind the key to the next ";" becomes "=value".
std::string WithValue(const std::string& line, const std::string& key, const std::string& value) {
    const auto comment = line.find(';');
    return line.substr(0, key.size()) + "=" + value + (comment == std::string::npos ? "" : line.substr(comment));
}

std::string Template(int outputType) {
    return "[QuayPubilsher]\r\nOUTPUT_TYPE = " + std::to_string(outputType) + "\t; 0 - Disable | 1 - Enable\r\n";
}

/// The publisher's section with new values; none when a key is missing.
std::optional<std::string> Rewritten(const Lines& lines, int outputType, const std::string& resourceName) {
    const auto type = LineOf(lines, "OUTPUT_TYPE"), resource = LineOf(lines, "RESOURCE_NAME");
    if (type == lines.end() || (outputType != 0 && resource == lines.end())) return std::nullopt;
    std::string text = "[QuayPubilsher]\n";
    for (auto line = lines.begin(); line != lines.end(); ++line) {
        if (line == type)
            text += WithValue(*line, "OUTPUT_TYPE", std::to_string(outputType));
        else if (line == resource && outputType != 0)
            text += WithValue(*line, "RESOURCE_NAME", resourceName);
        else
            text += *line;
        text += '\n';
    }
    return text;
}

}  // namespace

ListenerConfiguration::ListenerConfiguration(std::string candidate, const std::string& fallback)
    : m_candidate(std::move(candidate)) {
    std::error_code ignored;
    for (const std::string& path : {m_candidate, fallback})
        if (m_path.empty() && std::filesystem::exists(path, ignored)) m_path = path;
}

ListenerConfiguration& ListenerConfiguration::OfThisProcess() {
    static ListenerConfiguration configuration = [] {
        std::string folder;
        OSAL::GetModuleDirectory(folder);
        const std::string debug = folder + "../../Debug/x64/";
        if (OSAL::IsDebuggerPresent() && OSAL::DirectoryExists(debug)) folder = debug;
        return ListenerConfiguration(folder + fileName, std::string("/etc/") + fileName);
    }();
    return configuration;
}

int ListenerConfiguration::RefreshOutputType() {
    if (m_path.empty()) return 0;
    std::error_code error;
    const auto time = std::filesystem::last_write_time(m_path, error);
    if (!error && time == m_time) return 0;
    m_time = error ? std::filesystem::file_time_type{} : time;
    return Read() == 0 ? 1 : 0;
}

int ListenerConfiguration::Read() {
    m_outputType = 0;
    try {
        if (!TextOf(m_path)) return -2;
        std::string value = Value(publisherSection, "OUTPUT_TYPE");
        std::erase_if(value, [](unsigned char c) { return std::isspace(c); });
        if (!value.empty()) m_outputType = std::atoi(value.substr(0, valueLimit).c_str());
        return 0;
    } catch (const std::exception&) {
        return -1;
    }
}

std::string ListenerConfiguration::Value(const std::string& section, const std::string& key) const {
    const auto text = TextOf(m_path);
    const auto lines = text ? SectionOf(*text, section) : std::nullopt;
    if (!lines) return {};
    const auto line = LineOf(*lines, key);
    if (line == lines->end()) return {};
    const std::string value = line->substr(line->find('=') + 1);
    return Trimmed(value.substr(0, value.find(';')));
}

int ListenerConfiguration::WriteConfiguration(int outputType) const {
    const std::string& path = m_path.empty() ? m_candidate : m_path;
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored)) return 1;
    return OSAL::WriteWholeFile(path, Template(outputType)) ? 0 : -1;
}

int ListenerConfiguration::UpdateConfiguration(int outputType, const std::string& resourceName) const {
    if (m_path.empty()) return 1;
    const auto text = TextOf(m_path);
    if (!text) return -1;
    std::string rewritten = std::string("[") + listenerSection + "]";
    for (const std::string& line : SectionOf(*text, listenerSection).value_or(Lines{}))
        rewritten += "\n" + line;
    rewritten += "\n\n\n";
    const auto lines = SectionOf(*text, publisherSection);
    if (!lines) {
        rewritten += Template(outputType);
    } else {
        std::size_t length = 0;
        for (const std::string& line : *lines)
            length += line.size() + 1;  // the end of each counts
        if (length >= sectionLimit) return -5;
        const auto section = Rewritten(*lines, outputType, resourceName);
        if (!section) return -1;
        rewritten += *section;
    }
    return OSAL::WriteWholeFile(m_path, rewritten) ? 0 : -1;
}

std::string GetConfigurationPath() {
    return ListenerConfiguration::OfThisProcess().Path();
}

int RefreshOutputType() {
    return ListenerConfiguration::OfThisProcess().RefreshOutputType();
}

int WriteConfiguration(int outputType) {
    return ListenerConfiguration::OfThisProcess().WriteConfiguration(outputType);
}

int UpdateConfiguration(int outputType, const std::string& resourceName) {
    return ListenerConfiguration::OfThisProcess().UpdateConfiguration(outputType, resourceName);
}

}  // namespace Publisher
