#include <filesystem>

#include "Captures/CapturePlan.h"
#include "Commands/Commands.h"
#include "Commands/Kernel.h"
#include "Lines/ConfigText.h"

namespace TarnHost {
namespace {

class InfoPrinter {
public:
    explicit InfoPrinter(Context& context) : m_context(context) {}

    ExitStatus Print();

private:
    void Line(std::string_view label, const std::string& text);
    ExitStatus PrintDevice();

    Context& m_context;
};

void InfoPrinter::Line(std::string_view label, const std::string& text) {
    std::string line(label);
    line.resize(12, ' ');
    m_context.console.out.Write(line + text + "\n");
}

/// What only the plug-in can tell.
ExitStatus InfoPrinter::PrintDevice() {
    KeepingReceiver receiver;
    auto session = Session::Open(m_context.options, {}, receiver);
    if (!session) return Refuse(session.Why(), m_context);
    Line("plug-in", (*session)->PluginPath());
    Line("adapter", quayCommand::DescribeAdapter());
    Line("air", quayCommand::DescribeAir());
    (*session)->Run("");  // takes away what the start left to say
    const Exchange exchange = (*session)->Run("-get_supported_config");
    const auto config = ParseConfig(exchange.output);
    if (exchange.exitCode != 0 || !config)
        return Refuse({"the plug-in doesn't tell its configuration: " + ErrorSentence(exchange)}, m_context);
    Line("MAC", config->macAddress);
    Line("versions", "microcode " + config->ucode + ", driver " + config->driver + ", USC " + config->usc +
                         ", packet driver " + config->packetDriver);
    for (std::uint32_t band = 0; band < config->channels.size(); ++band) {
        std::string text;
        for (std::uint32_t width = 0; width < config->channels[band].size(); ++width) {
            if (const unsigned count = config->channels[band][width])
                text += (text.empty() ? "" : ", ") + std::to_string(count) + " at " +
                        std::to_string(RadioFacts::WidthMhz(width)) + " MHz";
        }
        if (!text.empty())
            Line(band == 0 ? "channels" : "", std::string(RadioFacts::Bands[band].name) + " GHz: " + text);
    }
    return Success;
}

ExitStatus InfoPrinter::Print() {
    Line("tarn", TARN_VERSION);
    const std::string& log = m_context.options.logPath;
    Line("log", log.empty() ? "none (--log FILE opens one)" : std::filesystem::absolute(log).string());
    if (!CheckKernel()) Line("kernel", DescribeKernel());
    return CheckRadio(PrintDevice(), m_context);
}

}  // namespace

ExitStatus Info(const InfoOptions& options, Context& context) {
    if (!options.kernelsOnly) return InfoPrinter(context).Print();
    context.console.out.Write(KernelNames("\n") + "\n");
    return Success;
}

}  // namespace TarnHost
