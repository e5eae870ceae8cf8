// Keys of the command line as data: a name and the operation behind it.
#pragma once

#include <span>
#include <string>
#include <type_traits>
#include <variant>

#include "CmdLine/CmdLine.h"
#include "Frame/Application.h"

/// One key. The operation's argument is the key's argument; an overriding operation is called through the same row.
template <typename Flows>
struct FlowKey {
    const char* name;
    std::variant<void (Flows::*)(), void (Flows::*)(int), void (Flows::*)(double), void (Flows::*)(std::string)>
        operation;
};

/// Adds the rows behind the keys that are there already; a line's keys take effect in this order.
template <typename Flows>
void AddFlowKeys(Flows& flows, std::span<const FlowKey<Flows>> rows) {
    const auto make = []<typename... Argument>(const char* name, Flows& target, void (Flows::*operation)(Argument...)) {
        if constexpr (sizeof...(Argument) == 0)
            return CmdLine::MakeKey<Flows>(name, &target, operation);
        else
            return CmdLine::MakeKey<Flows>(name, &target).template WithArgument<Argument...>(operation);
    };
    for (const FlowKey<Flows>& row : rows)
        std::visit([&](auto operation) { flows.AddKey(make(row.name, flows, operation), false); }, row.operation);
}
