// What an adapter is, and its form as text: "hw=26,card=4,...".
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "OSAL/Outcome.h"

namespace quayCommand {

/// Shortest and longest capture, in samples of one chain.
constexpr std::uint32_t MinCaptureSamples = 1024;
constexpr std::uint32_t MaxCaptureSamples = 4194304;

struct AdapterDescription {
    std::uint32_t hwType = 26;
    std::uint32_t cardType = 4;
    std::uint32_t deviceId = 0x51F0;
    std::uint32_t antennaMask = 3;  ///< bit 0 chain A, bit 1 chain B
    std::uint32_t boardSku = 1;     ///< what the radio answers, a byte
    std::string mac = "02:54:41:52:4E:01";
    std::set<std::uint32_t> bands{0, 1, 2};
    std::uint32_t samples = 98304;  ///< capture length in samples of one chain
    std::uint64_t seed = 1;
    bool connected = true;

    bool operator==(const AdapterDescription&) const = default;
};

/// "KEY=VALUE,...": keys left out keep their defaults; empty text gives the default adapter. A refusal begins with
/// "adapter: " and the key.
OSAL::Outcome<AdapterDescription> ReadAdapter(std::string_view text);

/// Every key written out, as `ReadAdapter` takes it.
std::string AdapterText(const AdapterDescription& adapter);

}  // namespace quayCommand
