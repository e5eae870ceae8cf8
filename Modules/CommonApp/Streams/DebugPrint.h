// The level-filtered print of the application frame, with three devices.
#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <memory>

class IOutputDevice {
public:
    virtual ~IOutputDevice() = default;
    virtual void Flush() {}
    virtual void Write(const char* text) = 0;
};

/// Builds a line of `CDebugPrint`.
class ILogFormatter {
public:
    virtual ~ILogFormatter() = default;
    /// Fills `buffer` with a zero-ended text of `size` bytes at most.
    virtual void Format(const char* module, const char* levelText, const char* text, char* buffer,
                        std::size_t size) = 0;
};

/// "<level> - <module>:             <text>".
class CLogFormatterBrief : public ILogFormatter {
public:
    void Format(const char* module, const char* levelText, const char* text, char* buffer, std::size_t size) override;
};

class IDebugPrint {
public:
    virtual void Print(const char* module, int level, const char* text) = 0;
    virtual void Printf(const char* module, int level, const char* format, ...) = 0;
    virtual void SetLevel(int device, int level) = 0;
    virtual int GetLevel(int device) const = 0;
    virtual void SetDevice(int device, IOutputDevice* output) = 0;
    virtual void SetFormatter(ILogFormatter* formatter) = 0;
    virtual void ClearDevice(int device) = 0;
    virtual bool IsEnabled() const = 0;
    virtual ~IDebugPrint() = default;
};

/// Devices are numbered 0 to 2; any other number does nothing.
/// Thread: levels, devices and formatter are set at start-up.
class CDebugPrint : public IDebugPrint {
public:
    void Print(const char* module, int level, const char* text) override;
    /// Longer texts are cut to 4095 characters.
    void Printf(const char* module, int level, const char* format, ...) override;
    /// A device prints what is not above its level. Level 0 on any device turns the whole print off, another one on.
    void SetLevel(int device, int level) override;
    int GetLevel(int device) const override;
    /// The device stays with the caller.
    void SetDevice(int device, IOutputDevice* output) override;
    /// Takes ownership. One that is set stays, and the second is destroyed; null takes it away.
    void SetFormatter(ILogFormatter* formatter) override;
    void ClearDevice(int device) override;
    bool IsEnabled() const override;

private:
    std::unique_ptr<ILogFormatter> m_formatter;
    std::array<IOutputDevice*, 3> m_devices{};
    std::array<int, 3> m_levels{};
    bool m_enabled = false;
};

/// The one of this module.
CDebugPrint& GetDebugPrint();
