#pragma once

#include "foundation/messages/MessageIdentifier.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace Tolvex {

/// How much a message of a Notification matters to the caller.
enum class MessageSeverity { information, warning, error };

/// A collection of messages into which an operation gathers problems that did not stop it. A composite: besides its own
/// messages it may hold whole notifications of the operations it called. Not safe for use from several threads at once.
class KX_EXPORT Notification {
public:
    struct Entry {
        MessageIdentifier message;
        MessageSeverity severity = MessageSeverity::error;
    };

    /// Appends one message.
    void Add(MessageIdentifier message, MessageSeverity severity = MessageSeverity::error);

    /// Appends another notification, which keeps its own order, behind what is here.
    void Add(Notification nested);

    /// True when neither this nor a nested notification holds a message.
    [[nodiscard]] bool IsEmpty() const noexcept;

    /// All messages, nested ones included, in the order in which they were added.
    [[nodiscard]] std::size_t GetCount() const noexcept;

    /// Calls `visit` with each message in the order in which they were added; a result of true stops the walk and is
    /// returned.
    bool ForEach(const std::function<bool(const Entry&)>& visit) const;

private:
    struct Node {
        Entry entry;
        std::vector<Notification> nested; // one element for a nested notification, none for a message
    };
    std::vector<Node> nodes;
};

} // namespace Tolvex
