// The air of a simulated scene.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Air/Air.h"
#include "Air/Scene/Scene.h"

namespace quayCommand {

struct SceneSignal;

class SceneAir : public IAir {
public:
    /// @param name  for people; @param seed  same seed, same samples
    SceneAir(std::string name, Scene scene, std::uint64_t seed);
    ~SceneAir() override;

    std::string Describe() const override;
    bool Capture(const CaptureRequest& request) override;

    /// A stress workload runs on the machine, from the next capture on.
    void SetWorkload(bool running) { m_workload = running; }

private:
    std::string m_name;
    Scene m_scene;
    std::unique_ptr<SceneSignal> m_signal;  ///< work memory, kept from capture to capture
    std::uint64_t m_seed;
    std::uint64_t m_captures = 0;
    bool m_workload = false;
};

}  // namespace quayCommand
