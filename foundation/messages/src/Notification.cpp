#include "foundation/messages/Notification.h"

#include <algorithm>
#include <utility>

namespace Tolvex {

void Notification::Add(MessageIdentifier message, MessageSeverity severity) {
    nodes.push_back({{std::move(message), severity}, {}});
}

void Notification::Add(Notification nested) {
    if (nested.IsEmpty())
        return;
    Node node;
    node.nested.push_back(std::move(nested));
    nodes.push_back(std::move(node));
}

bool Notification::IsEmpty() const noexcept {
    return nodes.empty(); // empty ones are not nested
}

std::size_t Notification::GetCount() const noexcept {
    std::size_t count = 0;
    for (const Node& node : nodes)
        count += node.nested.empty() ? 1 : node.nested.front().GetCount();
    return count;
}

bool Notification::ForEach(const std::function<bool(const Entry&)>& visit) const {
    return std::any_of(nodes.begin(), nodes.end(), [&visit](const Node& node) {
        return node.nested.empty() ? visit(node.entry) : node.nested.front().ForEach(visit);
    });
}

} // namespace Tolvex
