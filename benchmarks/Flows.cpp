// Speed of whole command lines through RunCommand on a simulated adapter that hears stored air, beside the engine's own
// share of the work; and of the offline analysis of a folder. Answers are checked before anything is timed.
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "BenchSupport.h"
#include "CSampleCommon.h"
#include "Kelp.h"
#include "RadioSetup.h"
#include "Web/TarnWifiFlowsWeb.h"

namespace {

namespace fs = std::filesystem;

constexpr unsigned kSamples = 98304;
constexpr const char* kSettings = "-band 5.2 -bandwidth 160 -channel 50 -chain A -rbw 39.0625";

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(EXIT_FAILURE);
}

struct Codes {
    Codes() : i(kSamples), q(kSamples), none(kSamples) {
        std::mt19937 generator(1);
        std::uniform_int_distribution<int> code(-2048, 2047);
        for (unsigned k = 0; k < kSamples; ++k) {
            i[k] = code(generator);
            q[k] = code(generator);
        }
        i.back() = 1;  // a last sample that is no padding
    }
    void write(const fs::path& path) const {
        std::ofstream file(path);
        for (unsigned k = 0; k < kSamples; ++k)
            file << i[k] << " ," << q[k] << '\n';
    }
    std::vector<double> i, q, none;
};

/// Takes the messages of the front-end variant; keeps how many bytes there were.
class Sink final : public IHostOutput {
public:
    void OutputObject(std::string text) override { bytes += text.size(); }
    void Output(std::string) override {}
    void OutputError(std::string text) override { fail(text); }
    std::size_t bytes = 0;
};

/// The flow object under a line of keys; the front-end variant can do both.
class Plugin {
public:
    Plugin() : m_flows(&m_sink) { m_flows.Init(); }

    std::string run(std::string line, bool plain = true) {
        std::string output, error;
        ITrellisPlugin& plugin = m_flows;
        if (plugin.RunCommand(line, output, error, plain) != 0) fail("'" + line + "': " + error);
        return output;
    }
    /// Bytes of the messages that a line sends.
    std::size_t send(const std::string& line) {
        m_sink.bytes = 0;
        run(line, false);
        return m_sink.bytes;
    }

private:
    Sink m_sink;
    TarnWifiFlowsWeb m_flows;
};

double cpuMilliseconds(const std::function<void()>& work, int rounds) {
    work();
    const std::clock_t begin = std::clock();
    for (int k = 0; k < rounds; ++k)
        work();
    return 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC / rounds;
}

void printCost(const char* what, double milliseconds, double limit) {
    std::printf("%s: %.3g ms of processor time (limit %g ms)\n", what, milliseconds, limit);
}

/// The engine alone, tuned as the flows tune it.
void tune(LumenSpectrumAnalyzer::CLmnSA& engine) {
    engine.m_Band = 1;
    engine.m_Bandwidth = 160;
    engine.m_SampleRate = 160;
    engine.m_CenterFreq = 5250;
    engine.m_NumOfChannels = 5;
    engine.m_ChannelIndex = 1;
    engine.m_ChainName = "A";
}

void compareTrigger(Plugin& plugin, const Codes& codes) {
    LumenSpectrumAnalyzer::CLmnSA engine;
    tune(engine);
    const double* const i[] = {codes.i.data(), codes.none.data(), codes.none.data()};
    const double* const q[] = {codes.q.data(), codes.none.data(), codes.none.data()};
    const auto sweep = [&] {
        engine.AddSweep(i, q, kSamples, 1);
        engine.UpdateFromLastSweep();
    };
    sweep();
    plugin.run(std::string(kSettings) + " -trigger_now");
    const double fromKeys = std::stod(plugin.run("-get_power_per_chain A"));
    const double gain = engine.GetChannelPowerPerChain(0) - fromKeys;  // the engine alone has none
    if (!(gain > 100 && gain < 140)) fail("the trigger and the engine differ by " + std::to_string(gain) + " dB");
    Bench::printRatio("-trigger_now", Bench::measureRatio([&] { plugin.run("-trigger_now"); }, sweep),
                      "engine's own sweep");
}

/// 4000 triggers fill the store; the last hundred may cost no more than the first.
void compareStore(Plugin& plugin) {
    plugin.run("-clear_freq_power_data");
    const auto hundred = [&] {
        for (int k = 0; k < 100; ++k)
            plugin.run("-trigger_now");
    };
    const double first = Bench::microsecondsOf(hundred);
    for (int k = 0; k < 37; ++k)
        hundred();
    Bench::printRatio("triggers 3801 to 3900", {Bench::microsecondsOf(hundred), first}, "triggers 1 to 100");
    plugin.run("-clear_freq_power_data");
}

/// What the messages of a trigger cost beyond the capture, and those of a wide spectrum.
void costMessages(Plugin& plugin) {
    plugin.run("-band 2.4 -bandwidth 20 -channel 1 -chain A -rbw 39.0625 -histogram true -trigger_now");
    const std::size_t bytes = plugin.send("-trigger_now");
    if (bytes < kSamples * 2 * 10) fail("a trigger sent " + std::to_string(bytes) + " bytes");
    constexpr int rounds = 40;
    const double plain = cpuMilliseconds([&] { plugin.run("-trigger_now"); }, rounds);
    const double messages = cpuMilliseconds([&] { plugin.send("-trigger_now"); }, rounds);
    printCost("a front-end's trigger at 1024 bins beyond the capture", messages - plain, 6);
    plugin.run("-band 6-7 -bandwidth 320 -channel 31 -channel_average true -maxhold true -trigger_now");
    if (plugin.send("-update_spectrum") < 3 * 8192 * 10) fail("a spectrum of 8192 bins is short");
    printCost("\"Spectrum Data\" of 8192 bins, three arrays",
              cpuMilliseconds([&] { plugin.send("-update_spectrum"); }, rounds), 2);
    plugin.run("-channel_average false -maxhold false -histogram false");
    plugin.run(kSettings);
}

}  // namespace

int main(int argc, char** argv) {
    if (kelpInit() < 0) fail("TARN_KERNEL names no kernel of this processor");
    if (!Bench::start(argc, argv, kelpKernelName())) return EXIT_FAILURE;
    const fs::path folder = fs::temp_directory_path() / "tarn_bench_flows";
    fs::remove_all(folder);
    fs::create_directories(folder / "scan");
    const Codes codes;
    codes.write(folder / "air.txt");
    codes.write(folder / "scan" / "BAND_5.2_CHANNEL_50_BW_160_CHAIN_A_1_.txt");
    quayCommand::RadioSetup setup;
    setup.air = "file:" + (folder / "air.txt").string();
    setup.storedTuning = quayCommand::StoredTuning::AsTuned;
    if (const auto reason = quayCommand::SetUpRadio(setup)) fail(*reason);

    Plugin plugin;
    std::printf("kernel %s, %s, one chain, %u samples\n", kelpKernelName(), Bench::buildType(), kSamples);
    compareTrigger(plugin, codes);
    const auto cost = [&](const std::string& line) { return cpuMilliseconds([&] { plugin.run(line); }, 40); };
    printCost("-update_iq", cost("-update_iq"), 25);
    printCost("-update_spectrum", cost("-update_spectrum"), 25);
    printCost("-save_IQ", cost("-save_IQ " + (folder / "iq.txt").string()), 20);
    printCost("-save_spectrum", cost("-save_spectrum " + (folder / "spectrum.txt").string()), 20);
    const std::string snapshot = (folder / "state.csv").string();
    printCost("-save_all", cost("-save_all " + snapshot), 100);
    printCost("-load_all", cost("-load_all " + snapshot), 200);
    plugin.run("-trigger_now");
    printCost("-find_peaks 10", cost("-find_peaks 10"), 0.2);
    costMessages(plugin);
    compareStore(plugin);
    printCost("offline analysis of a file", cost("-read_adc_samples_from_file " + (folder / "scan").string()), 2.5);
    fs::remove_all(folder);
    return EXIT_SUCCESS;
}
