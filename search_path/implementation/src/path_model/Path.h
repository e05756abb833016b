#pragma once

#include "change_tracking/AsynchronousWorkerQueue.h"
#include "path_interfaces/IPath.h"
#include "path_model/LayeredIndex.h"

#include <memory>
#include <vector>

namespace PathManagement {

/// One immutable snapshot of the search path. What it consists of is destroyed on the worker queue, so that letting go
/// of a large path blocks nobody.
class Path final : public IPath {
public:
    Path(std::unique_ptr<const LayeredIndex> index, std::shared_ptr<AsynchronousWorkerQueue> queue);
    ~Path() override;
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;

    [[nodiscard]] std::shared_ptr<const PathEntryVector> GetMainEntries() const override;
    [[nodiscard]] PathEntryVector GetMethodEntries() const override;
    [[nodiscard]] PathEntryVector GetMethodEntriesByName(SearchScope scope, const ustring& className) const override;
    [[nodiscard]] PathEntryVector GetPartiallyMatchingEntries(SearchScope scope,
                                                              const ustring& partialPath) const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetMainEntryForEntry(const IPathEntry& entry) const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetParentEntryForEntry(const IPathEntry& entry) const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry>
    GetPathEntryFromAbsoluteIRI(const Tolvex::CanonicalAbsoluteIRI& location) const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry>
    GetPathEntryFromAbsoluteIRI(const Tolvex::AbsoluteIRI& location, FilenameMatchingPolicy policy) const override;
    [[nodiscard]] std::optional<FoundItem> FindFirstInScope(SearchScope scope, const SearchTarget& target,
                                                            FilenameMatchingPolicy policy) const override;
    [[nodiscard]] std::vector<FoundItem> FindAllInScope(SearchScope scope, const SearchTarget& target,
                                                        FilenameMatchingPolicy policy) const override;
    bool ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override;
    bool ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override;
    [[nodiscard]] bool FirstEntryIsBeforeSecondOnPath(const IPathEntry& first, const IPathEntry& second) const override;
    [[nodiscard]] bool IsEntryOnPath(const IPathEntry& entry) const override;

    [[nodiscard]] const LayeredIndex& GetIndex() const noexcept { return *index; }

private:
    using Place = LayeredIndex::Place;

    [[nodiscard]] PathEntryVector GetHandles(const std::vector<Place>& places) const;
    [[nodiscard]] std::vector<Place> FindFolders(SearchScope scope, std::span<const ustring_view> partialPath) const;
    [[nodiscard]] std::vector<Place> FindFoldersWithName(SearchScope scope, std::span<const ustring_view> partialPath,
                                                         const SearchTarget& target) const;
    [[nodiscard]] std::optional<FoundItem> FindFirstByName(SearchScope scope, const SearchTarget& target,
                                                           FilenameMatchingPolicy policy) const;
    [[nodiscard]] std::vector<FoundItem> FindAllInPlaces(const std::vector<Place>& places, const SearchTarget& target,
                                                         FilenameMatchingPolicy policy) const;

    std::unique_ptr<const LayeredIndex> index;
    std::shared_ptr<AsynchronousWorkerQueue> queue;
};

} // namespace PathManagement
