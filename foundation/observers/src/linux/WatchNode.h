#pragma once

#include "../ObservedFolder.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace Tolvex {

/// A name on the way from the root to observed folders, in a tree of such names. Nodes above a watched one are watched.
struct WatchNode {
    enum class State : std::uint8_t {
        unknown, ///< has to be armed; so have all nodes below
        watched, ///< the descriptor's folder is the one that this way leads to
        missing, ///< the way leads nowhere; the last folder that is there tells when that changes
    };
    struct ByName {
        using is_transparent = void;
        static std::string_view GetName(const std::unique_ptr<WatchNode>& node) { return node->name; }
        static std::string_view GetName(std::string_view name) { return name; }
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            return GetName(a) < GetName(b);
        }
    };
    static constexpr int noDescriptor = -1;

    WatchNode(WatchNode* parent, std::string_view name) : parent(parent), name(name) {}

    /// Null when there is none.
    [[nodiscard]] WatchNode* FindChild(std::string_view childName) const {
        const auto found = children.find(childName);
        return found == children.end() ? nullptr : found->get();
    }

    WatchNode* const parent; // null for the root
    const std::string name;  // as it stands on the disk
    std::set<std::unique_ptr<WatchNode>, ByName> children;
    ObservedFolder* folder = nullptr; // null for those that are only on the way
    int descriptor = noDescriptor;    // shared with the nodes whose ways lead to the same folder
    std::uint32_t mask = 0;           // what the descriptor was last asked to tell on this node's behalf
    State state = State::unknown;
};

} // namespace Tolvex
