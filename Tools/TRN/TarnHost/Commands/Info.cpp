#include <filesystem>

#include "Captures/CapturePlan.h"
#include "Commands/HostSession.h"
#include "Kernel.h"
#include "Record.h"

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
    TarnSession::KeepingSink sink;
    const auto [session, status] = OpenSession({}, sink, m_context);
    if (!session) return status;
    Line("plug-in", session->PluginPath());
    Line("adapter", quayCommand::DescribeAdapter());
    Line("air", session->AirText());
    const auto facts = session->Adapter();
    if (!facts) return Refuse(facts.Reason(), m_context);
    Line("MAC", facts->macAddress);
    Line("versions", "microcode " + facts->ucode + ", driver " + facts->driver + ", USC " + facts->usc +
                         ", packet driver " + facts->packetDriver);
    for (std::uint32_t band = 0; band < facts->channels.size(); ++band) {
        std::string text;
        for (std::uint32_t width = 0; width < facts->channels[band].size(); ++width) {
            if (const std::size_t count = facts->channels[band][width].size())
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
    if (TarnSession::CheckKernel()) Line("kernel", TarnSession::DescribeKernel());
    return CheckRadio(PrintDevice(), m_context);
}

}  // namespace

ExitStatus Execute(const InfoOptions& options, Context& context) {
    if (!options.kernelsOnly) return InfoPrinter(context).Print();
    context.console.out.Write(TarnSession::KernelNames("\n") + "\n");
    return Success;
}

}  // namespace TarnHost
