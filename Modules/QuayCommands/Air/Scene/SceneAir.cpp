#include "Air/Scene/SceneAir.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "Air/Scene/Random.h"
#include "Air/Scene/SceneSignal.h"
#include "Format.h"
#include "RadioSetup.h"

namespace quayCommand {
namespace {

/// Envelopes to ADC codes: whole numbers of 16 bits.
void Digitise(const std::vector<double>& envelope, double gain, std::span<double> codes) {
    // Adding 1.5 * 2^52 leaves no room for a fraction: the fastest rounding that every compiler turns into vectors.
    constexpr double Rounder = 0x1.8p52;
    for (std::size_t n = 0; n < envelope.size(); ++n) {
        const double clipped = std::min(std::max(envelope[n] * gain, -32768.0), 32767.0);
        codes[n] = (clipped + Rounder) - Rounder;
    }
}

void Digitise(const SceneSignal::Antenna& antenna, const ChainCapture& chain) {
    const double gain = AmplitudeOf(chain.gainDb);
    Digitise(antenna.re, gain, chain.i);
    Digitise(antenna.im, gain, chain.q);
    // A capture ends in a sample that isn't zero: zeros at its end would read as the padding of a shorter capture.
    if (chain.i.back() == 0.0 && chain.q.back() == 0.0) chain.i.back() = 1.0;
}

/// Runs `add` on each source of the list that is on the air.
template <typename T, typename Add>
void AddAll(SceneSignal& signal, const Scene& scene, const std::vector<T>& sources, std::uint64_t kind, bool workload,
            Add add) {
    for (std::size_t k = 0; k < sources.size(); ++k) {
        const Source& source = sources[k];
        const auto state = StateAt(source, signal.startUs, workload);
        if (!state.on) continue;
        SourceLevel level;
        level.id = kind << 32 | k;
        // The two antennas stand apart, so that a source has another phase at each.
        const double apart = Random(MixSeed({signal.sceneSeed, level.id})).Uniform();
        for (std::size_t chain = 0; chain < 2; ++chain) {
            const double gain =
                AmplitudeOf(state.offsetDb + source.chainOffsetsDb[chain] + scene.chainOffsetsDb[chain]);
            const auto phase = UnitAt(chain == 0 ? 0.0 : apart);
            level.chainFactors[chain] = {gain * phase.re, gain * phase.im};
        }
        add(signal, sources[k], level);
    }
}

bool HearsWorkload(const Scene& scene) {
    const auto hears = [](const Source& source) { return source.activity != Activity::Always; };
    return std::ranges::any_of(scene.noise, hears) || std::ranges::any_of(scene.accessPoints, hears) ||
           std::ranges::any_of(scene.combs, hears) || std::ranges::any_of(scene.tones, hears);
}

constexpr std::uintmax_t MaxSceneBytes = 1 << 20;

std::string SceneNames() {
    std::string text;
    for (const auto& name : ShippedSceneNames())
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

/// The text of a scene file.
std::optional<std::string> FileText(const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || size > MaxSceneBytes) return {};
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return file ? std::optional(text.str()) : std::nullopt;
}

}  // namespace

SceneAir::SceneAir(std::string name, Scene scene, const AirContext& context)
    : m_name(std::move(name)),
      m_scene(std::move(scene)),
      m_signal(std::make_unique<SceneSignal>()),
      m_context(context),
      m_hearsWorkload(HearsWorkload(m_scene)) {}

SceneAir::~SceneAir() = default;

std::string SceneAir::Describe() const {
    const std::string text = Common::Format("simulated scene ${1}") % m_name;
    return m_scene.description.empty() ? text : text + ": " + m_scene.description;
}

AirAbilities SceneAir::Abilities() const {
    // Anything: a scene is arithmetic. Rates are those that whole OFDM symbols fit.
    return {{0.0, 1e6}, {20.0, 1e6}, (1u << MaxChains) - 1, GainTruth::Known, m_hearsWorkload};
}

OSAL::Outcome<CaptureFacts> SceneAir::Capture(const CaptureRequest& request) {
    if (request.chains.empty() || request.chains.front().i.empty()) return OSAL::Refusal{"no samples are asked for"};
    auto& signal = *m_signal;
    signal.centreMhz = request.centreMhz;
    signal.sampleRateMhz = request.sampleRateMhz;
    signal.startUs = static_cast<double>(m_captures) * m_scene.captureIntervalUs;
    signal.captureSeed = MixSeed({m_context.seed, m_captures});
    signal.sceneSeed = m_context.seed;
    signal.samples = request.chains.front().i.size();
    signal.antennas.resize(request.chains.size());
    for (std::size_t k = 0; k < request.chains.size(); ++k) {
        signal.antennas[k].chain = request.chains[k].chain;
        signal.antennas[k].re.assign(signal.samples, 0.0);
        signal.antennas[k].im.assign(signal.samples, 0.0);
    }
    ++m_captures;

    const bool workload = m_hearsWorkload && m_context.workload && m_context.workload->IsRunning();
    AddThermalNoise(signal, m_scene.noiseFigureDb);
    AddAll(signal, m_scene, m_scene.noise, 1, workload, AddNoiseBand);
    AddAll(signal, m_scene, m_scene.accessPoints, 2, workload, AddAccessPoint);
    AddAll(signal, m_scene, m_scene.combs, 3, workload, AddComb);
    AddAll(signal, m_scene, m_scene.tones, 4, workload, AddTone);

    CaptureFacts facts{signal.centreMhz, signal.sampleRateMhz, signal.startUs, 0, {}};
    for (std::size_t k = 0; k < request.chains.size(); ++k) {
        const auto& chain = request.chains[k];
        Digitise(signal.antennas[k], chain);
        facts.chains[k] = {chain.gainDb, true, CountOverloaded(chain), signal.samples};
    }
    return facts;
}

SourceState StateAt(const Source& source, double timeUs, bool workload) {
    if (source.activity != Activity::Always && (source.activity == Activity::Workload) != workload) return {false, 0.0};
    if (source.repeatUs > 0.0) timeUs = std::fmod(timeUs, source.repeatUs);
    const auto& changes = source.changes;
    const auto next = std::upper_bound(changes.begin(), changes.end(), timeUs,
                                       [](double time, const Change& change) { return time < change.atUs; });
    const Change before = next == changes.begin() ? Change{} : *std::prev(next);
    SourceState state{before.on, before.offsetDb};
    if (next != changes.end() && next->ramp)
        state.offsetDb += (next->offsetDb - before.offsetDb) * (timeUs - before.atUs) / (next->atUs - before.atUs);
    return state;
}

OSAL::Outcome<std::unique_ptr<IAir>> OpenSceneAir(const std::string& name, const AirContext& context) {
    auto text = ShippedSceneText(name);
    if (!text) text = FileText(name);
    if (!text)
        return OSAL::Refusal{
            Common::Format("${1}: neither a readable scene file of at most 1 MB nor one of the shipped "
                           "scenes ${2}") %
            name % SceneNames()};
    auto scene = ReadScene(*text);
    if (scene.IsRefused()) return OSAL::Refusal{Common::Format("${1}: ${2}") % name % scene.Reason()};
    return std::unique_ptr<IAir>(std::make_unique<SceneAir>(name, std::move(scene.Value()), context));
}

}  // namespace quayCommand
