#include "Station.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "Air/FileAir.h"
#include "Format.h"

namespace quayCommand {
namespace {

struct MadeAir {
    std::unique_ptr<IAir> air;
    SceneAir* scene = nullptr;
};

constexpr const char* DefaultScene = "office";
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

OSAL::Outcome<MadeAir> MakeSceneAir(const std::string& name, std::uint64_t seed) {
    auto text = ShippedSceneText(name);
    if (!text) text = FileText(name);
    if (!text)
        return OSAL::Refusal{
            Common::Format("air: ${1}: neither a readable scene file of at most 1 MB nor one of the shipped "
                           "scenes ${2}") %
            name % SceneNames()};
    auto scene = ReadScene(*text);
    if (scene.IsRefused()) return OSAL::Refusal{Common::Format("air: ${1}: ${2}") % name % scene.Reason()};
    auto air = std::make_unique<SceneAir>(name, std::move(scene.Value()), seed);
    auto* const pointer = air.get();
    return MadeAir{std::move(air), pointer};
}

OSAL::Outcome<MadeAir> MakeAir(const std::string& text, std::uint64_t seed) {
    if (text.empty() || text == "sim") return MakeSceneAir(DefaultScene, seed);
    if (text.starts_with("sim:")) return MakeSceneAir(text.substr(4), seed);
    if (!text.starts_with("file:"))
        return OSAL::Refusal{Common::Format("air: ${1}: isn't sim, sim:SCENE or file:PATH") % text};
    auto stored = FileAir::Open(text.substr(5));
    if (stored.IsRefused()) return OSAL::Refusal{"air: " + stored.Reason()};
    return MadeAir{std::make_unique<FileAir>(std::move(stored.Value()))};
}

}  // namespace

Station::Station(AdapterDescription adapter, std::unique_ptr<IAir> air, SceneAir* scene, FaultPlan faults)
    : m_adapter(std::move(adapter)),
      m_air(std::move(air)),
      m_scene(scene),
      m_faults(std::move(faults)),
      m_bareWifi(m_adapter, *m_air),
      m_bareNvm(m_adapter),
      m_wifi(m_bareWifi, m_monitor),
      m_nvm(m_bareNvm, m_monitor) {}

std::optional<std::string> Station::Make(const RadioSetup& setup, std::unique_ptr<Station>& out) {
    auto adapter = ReadAdapter(setup.adapter);
    if (adapter.IsRefused()) return adapter.Reason();
    auto faults = FaultPlan::Read(setup.faults);
    if (faults.IsRefused()) return faults.Reason();
    auto air = MakeAir(setup.air, adapter.Value().seed);
    if (air.IsRefused()) return air.Reason();
    auto& made = air.Value();
    std::unique_ptr<Station> station(
        new Station(std::move(adapter.Value()), std::move(made.air), made.scene, std::move(faults.Value())));
    // Last, so that a refused set-up never empties a journal.
    if (auto reason = station->m_journal.Open(setup.journalPath)) return reason;
    out = std::move(station);
    return {};
}

bool Station::SetWorkload(bool running) {
    if (m_scene) m_scene->SetWorkload(running);
    return m_scene != nullptr;
}

}  // namespace quayCommand
