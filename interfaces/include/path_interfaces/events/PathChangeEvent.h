#pragma once

#include "path_interfaces/IPathEntry.h"

#include <cstdint>
#include <utility>

namespace PathManagement {

class IMainSearchPathManager;

/// One change of a manager's path, announced three times. What it says is the same in each stage; it may be kept.
///
/// A handler may ask the manager anything. A change that it starts is refused with RecursivePathChangeException; a
/// refresh that it asks for is made once the change is over, or with the next one when a handler throws. A handler that
/// asks for one in answer to every event never lets the changes end.
class PathChangeEvent {
public:
    enum class Stage : std::uint32_t {
        beforeChange = 0, ///< the manager still has the old path; a handler that throws stops the change
        afterChange = 1,  ///< the manager has the new path
        afterwards = 2,   ///< every handler has seen the stage before
    };

    using IRIs = std::shared_ptr<const std::vector<Tolvex::CanonicalAbsoluteIRI>>;
    using Entries = std::shared_ptr<const PathEntryVector>;

    /// `currentFolderChanged`: another current folder, or none where there was one, or the other way round.
    /// `isRefresh`: the change comes from folders' contents, not from somebody who set a path. No pointer is null.
    PathChangeEvent(Stage stage, const IMainSearchPathManager& manager, bool currentFolderChanged, bool isRefresh,
                    IRIs&& oldIRIs, IRIs&& newIRIs, Entries&& added, Entries&& removed, Entries&& reordered,
                    Entries&& currentFolderAdded, Entries&& currentFolderRemoved, Entries&& currentFolderReordered,
                    Entries&& refreshedBefore, Entries&& refreshedAfter) noexcept
        : stage(stage), manager(&manager), currentFolderChanged(currentFolderChanged), refresh(isRefresh),
          oldIRIs(std::move(oldIRIs)), newIRIs(std::move(newIRIs)), added(std::move(added)),
          removed(std::move(removed)), reordered(std::move(reordered)),
          currentFolderAdded(std::move(currentFolderAdded)), currentFolderRemoved(std::move(currentFolderRemoved)),
          currentFolderReordered(std::move(currentFolderReordered)), refreshedBefore(std::move(refreshedBefore)),
          refreshedAfter(std::move(refreshedAfter)) {}

    [[nodiscard]] Stage GetStage() const noexcept { return stage; }
    [[nodiscard]] const IMainSearchPathManager& GetManager() const noexcept { return *manager; }
    [[nodiscard]] bool HasCurrentFolderChanged() const noexcept { return currentFolderChanged; }
    [[nodiscard]] bool IsRefresh() const noexcept { return refresh; }

    /// The folders that the user has set, in order, without the current folder.
    [[nodiscard]] const IRIs& GetOldIRIs() const noexcept { return oldIRIs; }
    [[nodiscard]] const IRIs& GetNewIRIs() const noexcept { return newIRIs; }

    // Of the folders that the user has set.
    [[nodiscard]] const Entries& GetAdded() const noexcept { return added; }
    [[nodiscard]] const Entries& GetRemoved() const noexcept { return removed; }
    [[nodiscard]] const Entries& GetReordered() const noexcept { return reordered; }

    // Of the current folder's path, which stands in front.
    [[nodiscard]] const Entries& GetCurrentFolderAdded() const noexcept { return currentFolderAdded; }
    [[nodiscard]] const Entries& GetCurrentFolderRemoved() const noexcept { return currentFolderRemoved; }
    [[nodiscard]] const Entries& GetCurrentFolderReordered() const noexcept { return currentFolderReordered; }

    /// Main entries whose folders stay where they are and have another entry now; of both lists, each once.
    [[nodiscard]] const Entries& GetRefreshedBefore() const noexcept { return refreshedBefore; }
    /// What each of GetRefreshedBefore is replaced by, place by place.
    [[nodiscard]] const Entries& GetRefreshedAfter() const noexcept { return refreshedAfter; }

private:
    Stage stage;
    const IMainSearchPathManager* manager;
    bool currentFolderChanged;
    bool refresh;
    IRIs oldIRIs;
    IRIs newIRIs;
    Entries added;
    Entries removed;
    Entries reordered;
    Entries currentFolderAdded;
    Entries currentFolderRemoved;
    Entries currentFolderReordered;
    Entries refreshedBefore;
    Entries refreshedAfter;
};

} // namespace PathManagement
