#pragma once

#include "Finder.h"

#include "path_interfaces/events/PathChangeEvent.h"

#include <optional>

namespace TolvexPath {

/// A name that another file answers to than before, or none, or one where there was none.
struct NameChange {
    Tolvex::ustring name;                            ///< as `find` takes it
    std::optional<PathManagement::FoundItem> before; ///< one of both is there
    std::optional<PathManagement::FoundItem> after;
};

/// What a change of a path means for who asks it.
struct ContentChanges {
    PathManagement::PathEntryVector folders; ///< main folders that hold other files or child folders than before
    PathManagement::PathEntryVector put;     ///< that came on the path
    PathManagement::PathEntryVector moved;   ///< to another place of it
    PathManagement::PathEntryVector taken;   ///< that left it
    std::vector<NameChange> names;           ///< that are answered differently, sorted

    /// Whether anybody has to be told of anything.
    [[nodiscard]] bool HoldAny() const noexcept {
        return !folders.empty() || !put.empty() || !moved.empty() || !taken.empty();
    }
};

/// `before` and `after` answer on the whole path. A file in a private or resources folder, which answers only to the
/// folder above it, goes by the name "folder/private/name".
///
/// Costs what is in the folders that the event names, not what is on the path.
[[nodiscard]] ContentChanges FindContentChanges(const PathManagement::PathChangeEvent& event, const Finder& before,
                                                const Finder& after);

} // namespace TolvexPath
