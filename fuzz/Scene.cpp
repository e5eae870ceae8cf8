// Scenes: whatever is accepted can be heard, on each band, and gives 16 bit codes.
// links: QuayCommandsImpl
#include "Air/Scene/SceneAir.h"

#include <cmath>
#include <vector>

#include "Fuzz.h"

using namespace quayCommand;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto scene = ReadScene(fuzz::TextOf(data, size));
    if (scene.IsRefused()) {
        fuzz::Expect(!scene.Reason().empty(), "a refusal has a reason");
        return 0;
    }
    const WorkloadSense workload(size % 3 == 0 ? Workload::On : Workload::Off);
    SceneAir air("fuzz", std::move(scene.Value()), {size, StoredTuning::ByName, &workload});
    std::vector<double> i(512), q(512);
    for (const double centre_mhz : {2437.0, 5210.0, 6185.0}) {
        ChainCapture chain{static_cast<unsigned>(size % 2), 60.0, i, q};
        const auto facts = CaptureAsAsked(air, {centre_mhz, 40.0, 20.0, {&chain, 1}});
        fuzz::Expect(!facts.IsRefused(), "an accepted scene can be heard");
        for (const auto* values : {&i, &q})
            for (const double code : *values)
                fuzz::Expect(code >= -32768.0 && code <= 32767.0 && code == std::trunc(code), "codes have 16 bits");
    }
    return 0;
}
