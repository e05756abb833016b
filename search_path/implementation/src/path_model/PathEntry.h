#pragma once

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

    /// An unknown policy is a programming error and ends the process.
    [[nodiscard]] const FilenameMatcher& GetFilenameMatcher(FilenameMatchingPolicy policy) const;

    /// How the matcher of a policy asks the comparator to compare, for those who compare without making strings.
    [[nodiscard]] Tolvex::CaseModifier GetCaseModifier(FilenameMatchingPolicy policy) const {
        if (static_cast<std::size_t>(policy) >= caseModifiers.size()) [[unlikely]]
            static_cast<void>(GetFilenameMatcher(policy)); // tells what is wrong and does not return
        return caseModifiers[static_cast<std::size_t>(policy)];
    }

    /// The files without making handles of them; valid as long as the entry lives.
    [[nodiscard]] std::span<const PathItem> GetItems() const noexcept { return items->GetItems(); }

private:
    /// By policy; the values of the two enumerations deliberately differ.
    static constexpr std::array caseModifiers{Tolvex::CaseModifier::exact, Tolvex::CaseModifier::ignoreCase,
                                              Tolvex::CaseModifier::fileSystemRule};

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
    std::array<FilenameMatcher, caseModifiers.size()> matchers; // by policy; each holds a pointer to pathComparator
    std::unique_ptr<Tolvex::IFileFolderObserver> observer;
    bool observerCoversChildren;
    boost::shared_ptr<Tolvex::EventMgr> eventManager;
};

} // namespace PathManagement
