#include "Monitor/FaultPlan.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>
#include <utility>

#include "Exceptions.h"
#include "Format.h"
#include "QuayExceptions.h"
#include "TextTools.h"

namespace quayCommand {
namespace {

/// Edits (insert, drop, replace a character) from one name to the other, not minding the case.
std::size_t EditDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t k = 0; k <= to.size(); ++k)
        row[k] = k;
    for (std::size_t a = 0; a < from.size(); ++a) {
        std::size_t diagonal = std::exchange(row[0], a + 1);
        for (std::size_t b = 0; b < to.size(); ++b) {
            const bool same =
                std::tolower(static_cast<unsigned char>(from[a])) == std::tolower(static_cast<unsigned char>(to[b]));
            const std::size_t best = std::min({row[b] + 1, row[b + 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = std::exchange(row[b + 1], best);
        }
    }
    return row.back();
}

/// The three nearest names.
std::string NearestNames(std::string_view name) {
    std::vector<std::pair<std::size_t, std::string_view>> ranked;
    // A name longer than all ours can't be near one, and the distance costs the product of the lengths.
    const auto asked = name.substr(0, 64);
    ranked.reserve(OperationNames.size());
    for (const auto known : OperationNames)
        ranked.emplace_back(EditDistance(asked, known), known);
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    return Common::Format("${1}, ${2}, ${3}") % ranked[0].second % ranked[1].second % ranked[2].second;
}

[[noreturn]] void Throw(FaultKind kind, Operation operation, std::uint64_t call) {
    const auto name = std::string(NameOf(operation));
    const std::string text = Common::Format("simulated fault at call ${1} of ${2}") % call % name;
    switch (kind) {
        case FaultKind::Quay:
            throw CQuayMsgException(text.c_str(), name.c_str(), "Modules/QuayCommands/FaultPlan", __LINE__);
        case FaultKind::Std:
            throw std::runtime_error(text);
        case FaultKind::Common:
            break;
    }
    throw Common::Exception(text);
}

}  // namespace

OSAL::Outcome<FaultPlan::Fault> FaultPlan::ReadFault(std::string_view entry) {
    const auto parts = SplitAt(entry, ':');
    const auto refuse = [&](const std::string& reason) {
        return OSAL::Refusal{Common::Format("faults: ${1}: ${2}") % entry % reason};
    };
    if (parts.size() < 2 || parts.size() > 3) return refuse("isn't OPERATION:N or OPERATION:N:KIND");
    const auto operation = OperationOf(parts[0]);
    if (!operation)
        return refuse(Common::Format("unknown operation \"${1}\"; the nearest are ${2}") % parts[0] %
                      NearestNames(parts[0]));
    const auto call = parts[1] == "*" ? EachCall : WholeNumber(parts[1]).value_or(EachCall);
    if (call == EachCall && parts[1] != "*")
        return refuse(Common::Format("\"${1}\" is neither a call counted from 1 nor *") % parts[1]);
    const auto kind = parts.size() == 3 ? parts[2] : "common";
    if (kind != "common" && kind != "quay" && kind != "std")
        return refuse(Common::Format("unknown kind \"${1}\"; the kinds are common, quay, std") % kind);
    return Fault{*operation, call,
                 kind == "quay"  ? FaultKind::Quay
                 : kind == "std" ? FaultKind::Std
                                 : FaultKind::Common};
}

OSAL::Outcome<FaultPlan> FaultPlan::Read(std::string_view text) {
    FaultPlan plan;
    if (text.empty()) return plan;
    for (const auto entry : SplitAt(text, ',')) {
        auto fault = ReadFault(entry);
        if (fault.IsRefused()) return OSAL::Refusal{fault.Reason()};
        const auto& added = fault.Value();
        const bool twice = std::any_of(plan.m_faults.begin(), plan.m_faults.end(), [&](const Fault& known) {
            return known.operation == added.operation && known.call == added.call;
        });
        if (twice) return OSAL::Refusal{Common::Format("faults: ${1}: is given twice") % entry};
        plan.m_faults.push_back(added);
    }
    return plan;
}

void FaultPlan::Count(Operation operation) {
    const auto call = ++m_calls[static_cast<std::size_t>(operation)];
    for (const auto& fault : m_faults)
        if (fault.operation == operation && (fault.call == call || fault.call == EachCall))
            Throw(fault.kind, operation, call);
}

}  // namespace quayCommand
