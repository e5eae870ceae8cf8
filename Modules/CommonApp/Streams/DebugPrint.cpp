#include "Streams/DebugPrint.h"

#include <cstdio>
#include <string>

namespace {

constexpr std::size_t bufferSize = 4096;

constexpr std::array<const char*, 12> levelTexts = {
    "       ",         "[ OEM_ERROR   ] ", "[ OEM_WARNING ] ", "[ OEM_INFO    ] ", "[ FATAL_ERROR ]", "[ ERROR1      ]",
    "[ ERROR2      ]", "[ FW_ERROR\t   ]", "[ WARNNING1   ]",  "[ WARNNING2   ]",  "[ FW_WRNNING  ]", "[ INFO0       ]",
};

template <typename Values>
bool Has(const Values& values, int index) {
    return index >= 0 && static_cast<std::size_t>(index) < values.size();
}

template <typename Values>
auto& At(Values& values, int index) {
    return values[static_cast<std::size_t>(index)];
}

const char* OrEmpty(const char* text) {
    return text ? text : "";
}

}  // namespace

void CLogFormatterBrief::Format(const char* module, const char* levelText, const char* text, char* buffer,
                                std::size_t size) {
    if (size == 0) return;
    const std::string line =
        std::string(OrEmpty(levelText)) + " - " + OrEmpty(module) + ":             " + OrEmpty(text) + "\n";
    buffer[line.copy(buffer, size - 1)] = '\0';
}

void CDebugPrint::Print(const char* module, int level, const char* text) {
    if (!m_enabled || !m_formatter) return;
    std::array<char, bufferSize> line{};
    m_formatter->Format(module, Has(levelTexts, level) ? At(levelTexts, level) : "", text, line.data(), line.size());
    for (std::size_t i = 0; i < m_devices.size(); ++i)
        if (m_devices[i] && m_levels[i] >= level) m_devices[i]->Write(line.data());
}

void CDebugPrint::Printf(const char* module, int level, const char* format, ...) {
    std::array<char, bufferSize> text{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    Print(module, level, text.data());
}

void CDebugPrint::SetLevel(int device, int level) {
    if (!Has(m_levels, device)) return;
    At(m_levels, device) = level;
    m_enabled = level != 0;
}

int CDebugPrint::GetLevel(int device) const {
    return Has(m_levels, device) ? At(m_levels, device) : 0;
}

void CDebugPrint::SetDevice(int device, IOutputDevice* output) {
    if (Has(m_devices, device)) At(m_devices, device) = output;
}

void CDebugPrint::SetFormatter(ILogFormatter* formatter) {
    std::unique_ptr<ILogFormatter> given(formatter);
    if (m_formatter && given && m_formatter != given) return;
    if (m_formatter == given)
        static_cast<void>(given.release());  // it is the one that stands
    else
        m_formatter = std::move(given);
}

void CDebugPrint::ClearDevice(int device) {
    SetDevice(device, nullptr);
}

bool CDebugPrint::IsEnabled() const {
    return m_enabled;
}

CDebugPrint& GetDebugPrint() {
    static CDebugPrint print;
    return print;
}
