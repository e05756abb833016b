#pragma once

#include "foundation/storage/CanonicalAbsoluteIRI.h"
#include "foundation/storage/PathComparator.h"
#include "path_interfaces/FilenameMatchingPolicy.h"
#include "path_interfaces/PathEntryType.h"
#include "path_interfaces/PathItem.h"
#include "path_interfaces/SearchScope.h"
#include "path_interfaces/SearchTarget.h"

#include <functional>
#include <memory>
#include <vector>

namespace PathManagement {

class IFolderMonitor;
class IPathEntry;
class IPathEntryFactory;

using PathItemVector = std::vector<std::shared_ptr<const PathItem>>;
using PathEntryVector = std::vector<std::shared_ptr<const IPathEntry>>;

/// Called by walks with each entry; true stops the walk.
using PathEntryCallback = std::function<bool(const std::shared_ptr<const IPathEntry>&)>;

/// Compares a candidate's name with a wanted name.
using FilenameMatcher = std::function<bool(const ustring& candidate, const ustring& wanted)>;

/// One folder on the path: an immutable snapshot of its files and of its special child folders. All operations may be
/// called from any thread at any time; shared as shared_ptr<const IPathEntry>. The order of the operations is the
/// binary contract between modules.
class IPathEntry {
public:
    virtual ~IPathEntry() = default;

    [[nodiscard]] virtual PathEntryType GetPathEntryType() const = 0;

    /// The folder's files, sorted by (normalised stem, stem, extension). Never null.
    [[nodiscard]] virtual std::shared_ptr<const PathItemVector> GetPathItems() const = 0;

    [[nodiscard]] virtual Tolvex::CanonicalAbsoluteIRI GetIRI() const = 0;

    /// How the entry is named to people.
    [[nodiscard]] virtual ustring GetDescriptor() const = 0;

    /// Null when the folder has none; so is the next.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry> GetPrivateEntry() const = 0;
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry> GetResourcesEntry() const = 0;

    /// Never null; so are the next two.
    [[nodiscard]] virtual std::shared_ptr<const PathEntryVector> GetPackageEntries() const = 0;
    [[nodiscard]] virtual std::shared_ptr<const PathEntryVector> GetMethodEntries() const = 0;
    [[nodiscard]] virtual std::shared_ptr<const PathEntryVector> GetUDDClassEntries() const = 0;

    /// The file that answers to the target: among those whose stem the policy's matcher accepts, the first that carries
    /// the most wanted extension. Null when there is none.
    [[nodiscard]] virtual std::shared_ptr<const PathItem> FindFirst(const SearchTarget& target,
                                                                    FilenameMatchingPolicy policy) const = 0;

    /// Every file that answers, by the target's order of extensions first and the order of items second.
    [[nodiscard]] virtual PathItemVector FindAll(const SearchTarget& target, FilenameMatchingPolicy policy) const = 0;

    /// Walks this entry and its descendants, each before its children: packages, methods, UDD classes, private,
    /// resources. Only entries in scope are handed to the callback; being out of scope prunes nothing. Returns whether
    /// the callback stopped the walk. What the callback throws passes through.
    virtual bool ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const = 0;

    /// As ForEachEntry; an implementation may call the callback from several threads at once.
    virtual bool ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const = 0;

    /// The matcher that FindFirst and FindAll use for a policy. It stays valid as long as the handle is held. An
    /// unknown policy is a programming error and ends the process.
    [[nodiscard]] virtual std::shared_ptr<const FilenameMatcher>
    CreateFilenameMatcher(FilenameMatchingPolicy policy) const = 0;

    /// True when the folder, or a child folder, may have changed since it was read.
    [[nodiscard]] virtual bool IsOutOfDate() const = 0;

    /// A fresh entry for the same folder; an empty one when the folder is gone.
    [[nodiscard]] virtual std::shared_ptr<const IPathEntry>
    GetUpdatedPathEntry(const IPathEntryFactory& factory, const IFolderMonitor& monitor) const = 0;

    /// Valid as long as the entry lives.
    [[nodiscard]] virtual const Tolvex::PathComparator& GetPathComparator() const = 0;
};

} // namespace PathManagement
