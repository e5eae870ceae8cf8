// The operations behind the rows of the key table.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

#include "CmdLine/CmdLine.h"
#include "Frame/Application.h"
#include "KeyTable.h"

/// The operation of one key. Its argument is the key's argument; an overriding operation is called all the same.
template <typename Flows>
struct KeyOperation {
    std::string_view key;
    std::variant<void (Flows::*)(), void (Flows::*)(int), void (Flows::*)(double), void (Flows::*)(std::string)> call;
};

namespace FlowKeys {

template <typename Flows>
const KeyOperation<Flows>* Find(std::span<const KeyOperation<Flows>> operations, std::string_view key) {
    for (const auto& operation : operations)
        if (operation.key == key) return &operation;
    return nullptr;
}

/// Adds the key of each row that has an operation here, in the order of the table: a line's keys take effect in it.
/// @throws std::logic_error, and nothing is added, when an operation has no row, or takes another argument than its row
template <typename Flows>
void Add(Flows& flows, std::span<const KeyOperation<Flows>> operations) {
    using TarnKeys::ArgumentKind;
    for (const auto& operation : operations) {
        constexpr ArgumentKind Kinds[] = {ArgumentKind::None, ArgumentKind::Int, ArgumentKind::Double,
                                          ArgumentKind::Text};
        const TarnKeys::KeyRow* row = TarnKeys::FindKey(operation.key);
        if (!row) throw std::logic_error("No row in the key table for " + std::string(operation.key));
        const ArgumentKind kind = row->argument.kind;
        const bool isName = kind == ArgumentKind::File || kind == ArgumentKind::Folder;
        if ((isName ? ArgumentKind::Text : kind) != Kinds[operation.call.index()])
            throw std::logic_error("Another argument in the key table for " + std::string(operation.key));
    }
    const auto make = []<typename... Argument>(const std::string& name, Flows& target,
                                               void (Flows::*call)(Argument...)) {
        if constexpr (sizeof...(Argument) == 0)
            return CmdLine::MakeKey<Flows>(name, &target, call);
        else
            return CmdLine::MakeKey<Flows>(name, &target).template WithArgument<Argument...>(call);
    };
    for (const TarnKeys::KeyRow& row : TarnKeys::Keys())
        if (const auto* operation = Find(operations, row.name))
            std::visit([&](auto call) { flows.AddKey(make(std::string(row.name), flows, call), false); },
                       operation->call);
}

}  // namespace FlowKeys
