// The air of a simulated scene.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Air/AirKinds.h"
#include "Air/Scene/Scene.h"

namespace quayCommand {

struct SceneSignal;

class SceneAir : public IAir {
public:
    /// @param name  for people; @param seed  same seed, same samples
    SceneAir(std::string name, Scene scene, std::uint64_t seed);
    ~SceneAir() override;

    std::string Describe() const override;
    AirAbilities Abilities() const override;
    OSAL::Outcome<CaptureFacts> Capture(const CaptureRequest& request) override;
    void SetWorkload(bool running) override { m_workload = running; }

private:
    std::string m_name;
    Scene m_scene;
    std::unique_ptr<SceneSignal> m_signal;  ///< work memory, kept from capture to capture
    std::uint64_t m_seed;
    std::uint64_t m_captures = 0;
    bool m_workload = false;
};

/// The kind's opener: `scene` is the name of a shipped scene or a scene file.
OSAL::Outcome<std::unique_ptr<IAir>> OpenSceneAir(const std::string& scene, const AirContext& context);

}  // namespace quayCommand
