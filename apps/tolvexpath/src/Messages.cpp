#include "Messages.h"

#include "DisplayText.h"

#include "foundation/messages/Catalogue.h"

#include <fmt/core.h>

#include <cstdio>
#include <string>
#include <unordered_set>

namespace TolvexPath {

void PrintMessage(std::string_view text) noexcept {
    try {
        fmt::print(stderr, "{}: {}\n", programName, ToDisplayText(Tolvex::FromUtf8(text)));
    } catch (...) {
        // A message that cannot be written has nobody left to be told to.
    }
}

Tolvex::Notification EachOnce(const Tolvex::Notification& problems) {
    Tolvex::Notification once;
    std::unordered_set<std::string> told;
    problems.ForEach([&](const Tolvex::Notification::Entry& entry) {
        if (told.insert(Tolvex::GetMessageText(entry.message)).second)
            once.Add(entry.message, entry.severity);
        return false;
    });
    return once;
}

void PrintMessages(const Tolvex::Notification& problems) {
    EachOnce(problems).ForEach([](const Tolvex::Notification::Entry& entry) {
        PrintMessage(Tolvex::GetMessageText(entry.message));
        return false;
    });
}

} // namespace TolvexPath
