#include "foundation/messages/Notification.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>

namespace Tolvex {
namespace {

// Builds a random tree of notifications and, beside it, the plain list of its messages.
Notification MakeNotification(std::vector<std::string>& keys, int depth) {
    Notification notification;
    for (int i = *rc::gen::inRange(0, 4); i > 0; --i) {
        if (depth > 0 && *rc::gen::arbitrary<bool>()) {
            notification.Add(MakeNotification(keys, depth - 1));
        } else {
            keys.push_back("message " + std::to_string(keys.size()));
            notification.Add({"test", keys.back(), {}}, MessageSeverity::warning);
        }
    }
    return notification;
}

RC_GTEST_PROP(Notification, TellsAllMessagesInTheOrderTheyWereAddedUntilStopped, ()) {
    std::vector<std::string> keys;
    const Notification notification = MakeNotification(keys, 3);
    RC_ASSERT(notification.GetCount() == keys.size());
    RC_ASSERT(notification.IsEmpty() == keys.empty());

    const auto stopAfter = *rc::gen::inRange<std::size_t>(1, keys.size() + 2);
    std::vector<std::string> visited;
    const bool stopped = notification.ForEach([&](const Notification::Entry& entry) {
        RC_ASSERT(entry.severity == MessageSeverity::warning);
        visited.push_back(entry.message.key);
        return visited.size() == stopAfter;
    });
    RC_ASSERT(stopped == (stopAfter <= keys.size()));
    keys.resize(std::min(stopAfter, keys.size()));
    RC_ASSERT(visited == keys);
}

} // namespace
} // namespace Tolvex
