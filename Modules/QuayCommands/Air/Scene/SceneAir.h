// The air of a simulated scene.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Air/Air.h"
#include "Air/AirContext.h"
#include "Air/Scene/Scene.h"

namespace quayCommand {

struct SceneSignal;

class SceneAir : public IAir {
public:
    /// @param name  for people
    SceneAir(std::string name, Scene scene, const AirContext& context);
    ~SceneAir() override;

    std::string Describe() const override;
    AirAbilities Abilities() const override;
    OSAL::Outcome<CaptureFacts> Capture(const CaptureRequest& request) override;

private:
    std::string m_name;
    Scene m_scene;
    std::unique_ptr<SceneSignal> m_signal;  ///< work memory, kept from capture to capture
    AirContext m_context;
    std::uint64_t m_captures = 0;
    bool m_hearsWorkload;
};

/// The kind's opener: `scene` is the name of a shipped scene or a scene file.
OSAL::Outcome<std::unique_ptr<IAir>> OpenSceneAir(const std::string& scene, const AirContext& context);

}  // namespace quayCommand
