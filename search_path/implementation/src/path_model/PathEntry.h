#pragma once

#include "foundation/diagnostics/Terminate.h"
#include "foundation/events/EventMgr.h"
#include "foundation/observers/IFileFolderObserver.h"
#include "path_interfaces/IPathEntry.h"
#include "path_utilities/PathItemBlock.h"
#include "path_utilities/PublishOnce.h"

#include <array>
#include <memory>
#include <span>

namespace PathManagement {

/// The child entries of one folder.
struct PathEntryChildren {
    PathEntryVector packageEntries;
    PathEntryVector methodEntries;
    PathEntryVector uddClassEntries;
    std::shared_ptr<const IPathEntry> privateEntry;
    std::shared_ptr<const IPathEntry> resourcesEntry;
};

/// One folder of a storage system as the path sees it; made complete by the path-entry factory, in a shared_ptr,
/// and never changed. Announces its end with a PathEntryWillBeDestroyedEvent.
class PathEntry final : public IPathEntry, public std::enable_shared_from_this<PathEntry> {
public:
    /// `fileNames` may be in any order; they are copied.
    PathEntry(Tolvex::CanonicalAbsoluteIRI location, ustring descriptor, PathEntryType type, PathEntryChildren children,
              std::span<const ustring_view> fileNames, const Tolvex::PathComparator& pathComparator,
              std::unique_ptr<Tolvex::IFileFolderObserver> observer, boost::shared_ptr<Tolvex::EventMgr> eventManager);
    ~PathEntry() override;
    PathEntry(const PathEntry&) = delete;
    PathEntry& operator=(const PathEntry&) = delete;

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
    [[nodiscard]] std::shared_ptr<const IPathEntry> GetUpdatedPathEntry(const IPathEntryFactory& factory,
                                                                        const IFolderMonitor& monitor) const override;
    [[nodiscard]] const Tolvex::PathComparator& GetPathComparator() const override;

    /// How a policy asks a comparator to compare; the values of the two enumerations deliberately differ. An unknown
    /// policy is a programming error and ends the process.
    [[nodiscard]] static Tolvex::CaseModifier GetCaseModifier(FilenameMatchingPolicy policy) {
        switch (policy) {
        case FilenameMatchingPolicy::exact:
            return Tolvex::CaseModifier::exact;
        case FilenameMatchingPolicy::ignoreCase:
            return Tolvex::CaseModifier::ignoreCase;
        case FilenameMatchingPolicy::native:
            return Tolvex::CaseModifier::fileSystemRule;
        }
        Tolvex::DiagnosticTerminate("Unrecognized FilenameMatchingPolicy passed to GetFilenameMatcher");
    }

    [[nodiscard]] const FilenameMatcher& GetFilenameMatcher(FilenameMatchingPolicy policy) const;

    /// The files without making handles of them; valid as long as the entry lives.
    [[nodiscard]] std::span<const PathItem> GetItems() const noexcept { return items->GetItems(); }

private:
    template <class Visit>
    bool AnyChild(const Visit& visit) const;

    Tolvex::CanonicalAbsoluteIRI location;
    ustring descriptor;
    PathEntryType type;
    std::shared_ptr<const PathEntryVector> packageEntries;
    std::shared_ptr<const PathEntryVector> methodEntries;
    std::shared_ptr<const PathEntryVector> uddClassEntries;
    std::shared_ptr<const IPathEntry> privateEntry;
    std::shared_ptr<const IPathEntry> resourcesEntry;
    std::shared_ptr<const PathItemBlock> items;
    PublishOnce<std::shared_ptr<const PathItemVector>> itemHandles; // most entries are searched, few are listed
    Tolvex::PathComparator pathComparator;
    std::array<FilenameMatcher, 3> matchers; // by CaseModifier; each holds a pointer to pathComparator
    std::unique_ptr<Tolvex::IFileFolderObserver> observer;
    bool observerCoversChildren;
    boost::shared_ptr<Tolvex::EventMgr> eventManager;
};

} // namespace PathManagement
