// Access points: when their frames are on the air.
#include <algorithm>
#include <cmath>

#include "Air/Scene/Ofdm.h"
#include "Air/Scene/Random.h"
#include "Air/Scene/SceneSignal.h"
#include "ChannelPlan.h"

namespace quayCommand {
namespace {

/// The frames of one round in the order of their kinds.
std::vector<unsigned> RoundOf(const AccessPoint& accessPoint) {
    std::vector<unsigned> lengths;
    for (const auto& kind : accessPoint.frames)
        lengths.insert(lengths.end(), kind.count, kind.lengthUs);
    return lengths;
}

}  // namespace

// Time is cut into rounds, each with all frames of the mix in an order of its own. A frame stands somewhere in a slot
// whose length is the frame's by the duty cycle, so each stretch of time holds about the same share of frames, and any
// capture can be made without those before it.
void AddAccessPoint(SceneSignal& signal, const AccessPoint& accessPoint, const SourceLevel& level) {
    const double offsetMhz = RadioFacts::CentreMhz(accessPoint.band, accessPoint.channel) - signal.centreMhz;
    OfdmTransmitter transmitter(RadioFacts::WidthMhz(accessPoint.bandwidth), accessPoint.legacy, offsetMhz,
                                signal.sampleRateMhz);
    if (!transmitter.IsHeard()) return;
    const auto lengths = RoundOf(accessPoint);
    double roundUs = 0.0;
    for (const auto length : lengths)
        roundUs += length / accessPoint.duty;
    const double endUs = signal.startUs + static_cast<double>(signal.samples) / signal.sampleRateMhz;
    const double amplitude = AmplitudeOf(accessPoint.levelDbm);
    for (auto round = static_cast<std::uint64_t>(signal.startUs / roundUs);; ++round) {
        double slotUs = static_cast<double>(round) * roundUs;
        if (slotUs >= endUs) return;
        Random random(MixSeed({signal.sceneSeed, level.id, round}));
        auto order = lengths;
        for (std::size_t k = order.size(); k > 1; --k)
            std::swap(order[k - 1], order[random.Next() % k]);
        for (const auto length : order) {
            const double slotLengthUs = length / accessPoint.duty;
            const double startUs = slotUs + random.Uniform() * (slotLengthUs - length) - signal.startUs;
            const auto first = static_cast<std::ptrdiff_t>(std::llround(startUs * signal.sampleRateMhz));
            transmitter.AddFrame(signal, {length, random.Next()}, first, amplitude, level);
            slotUs += slotLengthUs;
        }
    }
}

}  // namespace quayCommand
