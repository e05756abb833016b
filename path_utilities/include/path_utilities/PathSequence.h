#pragma once

#include "path_interfaces/IPath.h"
#include "path_utilities/PublishOnce.h"

#include <memory>
#include <vector>

namespace PathManagement {

/// Several paths seen as one, in their order. Nothing of theirs is copied: a look-up here is a look-up in each, until
/// one answers. Where a folder stands on several of the paths, its first place counts for every question about places.
class KX_EXPORT PathSequence : public IPath {
public:
    ~PathSequence() override;
    PathSequence(const PathSequence&) = delete;
    PathSequence& operator=(const PathSequence&) = delete;

    /// Made when first asked for, once.
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

protected:
    enum class Repeats { kept, dropped };

    /// REQUIRES: no null path.
    PathSequence(std::vector<std::shared_ptr<const IPath>> paths, Repeats repeats);

private:
    /// How much a path has in common with those before it.
    enum class Overlap {
        none,
        sameEntries, ///< folders of earlier paths, as the same objects
        otherEntries ///< a folder of an earlier path, as another object
    };
    struct Member {
        std::shared_ptr<const IPath> path;
        Overlap overlap = Overlap::none;
    };

    [[nodiscard]] Overlap FindOverlap(std::size_t member) const;
    [[nodiscard]] const IPath* FindPathOf(const IPathEntry& entry) const;
    [[nodiscard]] bool IsHidden(std::size_t member, const IPathEntry& entry) const;
    template <class Get>
    [[nodiscard]] PathEntryVector Collect(const Get& get) const;
    template <class Walk>
    [[nodiscard]] bool WalkMembers(const PathEntryCallback& callback, const Walk& walk) const;
    [[nodiscard]] std::optional<FoundItem> FindFirstInMember(std::size_t member, SearchScope scope,
                                                             const SearchTarget& target,
                                                             FilenameMatchingPolicy policy) const;
    [[nodiscard]] std::vector<FoundItem> FindAllInMember(std::size_t member, SearchScope scope,
                                                         const SearchTarget& target,
                                                         FilenameMatchingPolicy policy) const;

    std::vector<Member> members;
    PublishOnce<std::shared_ptr<const PathEntryVector>> mainEntries;
};

} // namespace PathManagement
