#pragma once

#include "path_interfaces/IPathEntry.h"

namespace PathManagement {

/// Answers every question as the entry it wraps. A base for entries that answer some differently.
class PathEntryDecorator : public IPathEntry {
public:
    /// REQUIRES: `decoratedEntry` is not null.
    explicit PathEntryDecorator(std::shared_ptr<const IPathEntry> decoratedEntry) noexcept;
    ~PathEntryDecorator() override;
    PathEntryDecorator(const PathEntryDecorator&) = delete;
    PathEntryDecorator& operator=(const PathEntryDecorator&) = delete;

    [[nodiscard]] PathEntryType GetPathEntryType() const override;
    [[nodiscard]] std::shared_ptr<const PathItemVector> GetPathItems() const override;
    [[nodiscard]] Tolvex::CanonicalAbsoluteIRI GetIRI() const override;
    [[nodiscard]] ustring GetDescriptor() const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetPrivateEntry() const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetResourcesEntry() const override;
    [[nodiscard]] std::shared_ptr<const PathEntryVector> GetPackageEntries() const override;
    [[nodiscard]] std::shared_ptr<const PathEntryVector> GetMethodEntries() const override;
    [[nodiscard]] std::shared_ptr<const PathEntryVector> GetUDDClassEntries() const override;
    [[nodiscard]] std::shared_ptr<const PathItem> FindFirst(const SearchTarget& target,
                                                            FilenameMatchingPolicy policy) const override;
    [[nodiscard]] PathItemVector FindAll(const SearchTarget& target, FilenameMatchingPolicy policy) const override;
    bool ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override;
    bool ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const override;
    [[nodiscard]] std::shared_ptr<const FilenameMatcher>
    CreateFilenameMatcher(FilenameMatchingPolicy policy) const override;
    [[nodiscard]] bool IsOutOfDate() const override;

    /// The update of the wrapped entry, not wrapped.
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetUpdatedPathEntry(const IPathEntryFactory& factory,
                                                                        const IFolderMonitor& monitor) const override;
    [[nodiscard]] const Tolvex::PathComparator& GetPathComparator() const override;

protected:
    [[nodiscard]] const std::shared_ptr<const IPathEntry>& GetDecoratedEntry() const noexcept { return decoratedEntry; }

private:
    const std::shared_ptr<const IPathEntry> decoratedEntry;
};

} // namespace PathManagement
