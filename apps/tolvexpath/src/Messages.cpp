#include "Messages.h"

#include "DisplayText.h"

#include "foundation/messages/Catalogue.h"

#include <fmt/core.h>

#include <cstdio>

namespace TolvexPath {

void PrintMessage(std::string_view text) noexcept {
    try {
        fmt::print(stderr, "{}: {}\n", programName, ToDisplayText(Tolvex::FromUtf8(text)));
    } catch (...) {
        // A message that cannot be written has nobody left to be told to.
    }
}

void PrintMessages(const Tolvex::Notification& problems) {
    problems.ForEach([](const Tolvex::Notification::Entry& entry) {
        PrintMessage(Tolvex::GetMessageText(entry.message));
        return false;
    });
}

} // namespace TolvexPath
