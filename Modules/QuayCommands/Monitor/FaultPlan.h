// Makes chosen calls on the radio fail, so that an engineer sees what a flow does then.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Monitor/Operations.h"
#include "OSAL/Outcome.h"

namespace quayCommand {

/// What a fault throws: Common::Exception, CQuayMsgException or std::runtime_error.
enum class FaultKind { Common, Quay, Std };

class FaultPlan {
public:
    /// "OPERATION:N[:KIND][,...]", N a call counted from 1 or "*". A refusal begins with "faults: " and the entry.
    static OSAL::Outcome<FaultPlan> Read(std::string_view text);

    /// Counts a call, and throws when the plan says so; the call itself must then not happen.
    void Count(Operation operation);

private:
    static constexpr std::uint64_t EachCall = 0;
    struct Fault {
        Operation operation;
        std::uint64_t call;
        FaultKind kind;
    };
    static OSAL::Outcome<Fault> ReadFault(std::string_view entry);

    std::vector<Fault> m_faults;
    std::array<std::uint64_t, OperationCount> m_calls{};
};

}  // namespace quayCommand
