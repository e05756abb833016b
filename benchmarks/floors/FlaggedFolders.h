#pragma once

#include "foundation/observers/IFileFolderObserver.h"
#include "path_interfaces/IPath.h"

#include <memory>
#include <utility>
#include <vector>

namespace KxBenchmarks {

/// What it costs to ask every folder of a path when each answers from memory: a walk over its entries, and one virtual
/// call for each.
class FlaggedFolders {
public:
    explicit FlaggedFolders(std::shared_ptr<const PathManagement::IPath> walked) : path(std::move(walked)) {
        path->ForEachEntry(PathManagement::SearchScope::All(), [this](const auto&) {
            observers.push_back(std::make_unique<const Flag>());
            return false;
        });
    }

    [[nodiscard]] std::size_t GetCount() const noexcept { return observers.size(); }

    [[nodiscard]] std::size_t CountChanged() const {
        std::size_t changed = 0;
        path->ForEachEntry(PathManagement::SearchScope::All(),
                           [&changed, next = observers.begin()](const auto&) mutable {
                               changed += (*next++)->hasChanged() ? 1 : 0;
                               return false;
                           });
        return changed;
    }

private:
    struct Flag final : Tolvex::IFileFolderObserver {
        [[nodiscard]] bool hasChanged() const noexcept override { return isSet; }
        [[nodiscard]] bool observesChildFoldersToo() const noexcept override { return false; }
        bool isSet = false;
    };

    const std::shared_ptr<const PathManagement::IPath> path;
    std::vector<std::unique_ptr<const Tolvex::IFileFolderObserver>> observers;
};

} // namespace KxBenchmarks
