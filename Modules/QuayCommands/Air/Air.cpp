#include "Air/Air.h"

#include <algorithm>
#include <cmath>

#include "Format.h"

namespace quayCommand {
namespace {

/// Why the air can't be asked for this.
OSAL::Outcome<> CheckAbilities(const AirAbilities& abilities, const CaptureRequest& request) {
    if (!abilities.centreMhz.Holds(request.centreMhz))
        return OSAL::Refusal{Common::Format("the air can't be tuned to ${1} MHz, only from ${2} to ${3}") %
                             request.centreMhz % abilities.centreMhz.low % abilities.centreMhz.high};
    if (!abilities.sampleRateMhz.Holds(request.sampleRateMhz))
        return OSAL::Refusal{Common::Format("the air can't deliver ${1} MHz, only from ${2} to ${3}") %
                             request.sampleRateMhz % abilities.sampleRateMhz.low % abilities.sampleRateMhz.high};
    for (const auto& chain : request.chains)
        if ((abilities.chainMask >> chain.chain & 1) == 0)
            return OSAL::Refusal{Common::Format("the air has no chain ${1}") % (chain.chain == 0 ? "A" : "B")};
    return {};
}

/// Why the samples would mislead.
OSAL::Outcome<> CheckFacts(const CaptureFacts& facts, const CaptureRequest& request) {
    // Written so that a NaN is refused; a part in a million of either is far below a bin.
    const auto isAsked = [](double is, double asked) { return std::fabs(is - asked) <= 1e-6 * asked; };
    if (!isAsked(facts.centreMhz, request.centreMhz))
        return OSAL::Refusal{Common::Format("the air was heard at ${1} MHz instead of ${2}") % facts.centreMhz %
                             request.centreMhz};
    if (!isAsked(facts.sampleRateMhz, request.sampleRateMhz))
        return OSAL::Refusal{Common::Format("the air was sampled at ${1} MHz instead of ${2}") % facts.sampleRateMhz %
                             request.sampleRateMhz};
    if (facts.lostSamples != 0)
        return OSAL::Refusal{Common::Format("${1} sample(s) of the capture were lost") % facts.lostSamples};
    return {};
}

}  // namespace

std::size_t CountOverloaded(const ChainCapture& chain) {
    const auto isAtEnd = [](double code) { return code <= -32768.0 || code >= 32767.0; };
    std::size_t count = 0;
    for (std::size_t n = 0; n < chain.i.size(); ++n)
        count += isAtEnd(chain.i[n]) || isAtEnd(chain.q[n]);
    return count;
}

OSAL::Outcome<CaptureFacts> CaptureAsAsked(IAir& air, const CaptureRequest& request) {
    const auto capture = [&]() -> OSAL::Outcome<CaptureFacts> {
        if (auto able = CheckAbilities(air.Abilities(), request); able.IsRefused()) return able.Why();
        auto facts = air.Capture(request);
        if (facts.IsRefused()) return facts;
        if (auto good = CheckFacts(facts.Value(), request); good.IsRefused()) return good.Why();
        return facts;
    };
    auto facts = capture();
    if (facts.IsRefused()) {
        for (const auto& chain : request.chains) {
            std::ranges::fill(chain.i, 0.0);
            std::ranges::fill(chain.q, 0.0);
        }
    }
    return facts;
}

}  // namespace quayCommand
