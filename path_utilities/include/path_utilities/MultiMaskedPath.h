#pragma once

#include "path_interfaces/IPath.h"
#include "path_utilities/PublishOnce.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace PathManagement {

/// A path without some of its entries. Hidden are the folders of the listed entries, whatever objects stand for them,
/// and everything that lies below them on the path: where a folder is not there, it has no children there. A look-up is
/// one in the path and a comparison of names, and goes on only where the first answer is hidden.
///
/// Relies on the location of an entry lying below those of the entries above it.
class KX_EXPORT MultiMaskedPath final : public IPath {
public:
    /// REQUIRES: neither the path nor an entry is null.
    MultiMaskedPath(std::shared_ptr<const IPath> path, std::vector<std::shared_ptr<const IPathEntry>> hiddenEntries);
    ~MultiMaskedPath() override;
    MultiMaskedPath(const MultiMaskedPath&) = delete;
    MultiMaskedPath& operator=(const MultiMaskedPath&) = delete;

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

private:
    [[nodiscard]] bool IsHidden(const IPathEntry& entry) const;
    [[nodiscard]] bool IsHidden(const FoundItem& found) const;
    [[nodiscard]] bool IsHidden(const Tolvex::AbsoluteIRI& location, const IPathEntry& entry) const;
    [[nodiscard]] bool IsNamedBelowHidden(ustring_view pathText) const;
    [[nodiscard]] bool LiesBelowHidden(const IPathEntry& entry) const;
    [[nodiscard]] std::shared_ptr<const IPathEntry> UnlessHidden(std::shared_ptr<const IPathEntry> entry) const;
    [[nodiscard]] PathEntryVector WithoutHidden(PathEntryVector entries) const;

    std::shared_ptr<const IPath> path;
    std::unordered_set<Tolvex::AbsoluteIRI, Tolvex::IRIHash> hidden;
    std::unordered_set<ustring_view> hiddenTexts; // the path texts of `hidden`
    std::vector<std::size_t> hiddenLengths;       // of these texts, each once
    PublishOnce<std::shared_ptr<const PathEntryVector>> mainEntries;
};

} // namespace PathManagement
