// The walk through a tree of nodes.
#pragma once

#include <vector>

#include "Xml/Node.h"

namespace XML {

/// Goes through all descendants of a node, depth first and in the order of the children, without recursion.
/// @param enter  called with the name of a node and the node
/// @param leave  called with the node behind its last child
template <typename Enter, typename Leave>
void Walk(const Node& top, Enter&& enter, Leave&& leave) {
    struct Level {
        const Node* node;
        Node::Children::const_iterator next;
    };
    std::vector<Level> open{{&top, top.GetChildren().begin()}};
    while (!open.empty()) {
        auto& [node, next] = open.back();
        if (next == node->GetChildren().end()) {
            if (open.size() > 1) leave(*node);
            open.pop_back();
            continue;
        }
        const auto& [name, child] = *next++;
        enter(name, child);
        open.push_back({child.Get(), child->GetChildren().begin()});
    }
}

}  // namespace XML
