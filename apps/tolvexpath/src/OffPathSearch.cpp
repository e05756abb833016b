#include "OffPathSearch.h"

#include "QualifiedName.h"

#include "foundation/environment/StorageAccess.h"
#include "path_utilities/PartialPathname.h"
#include "path_utilities/PathEntryTypeRules.h"
#include "path_utilities/PathItemBlock.h"

#include <algorithm>
#include <deque>
#include <unordered_set>
#include <utility>

namespace TolvexPath {

using PathManagement::IPath;
using Tolvex::AbsoluteIRI;
using Tolvex::CanonicalAbsoluteIRI;
using Tolvex::FolderListing;
using Tolvex::ustring_view;

namespace {

class OffPathSearch {
public:
    OffPathSearch(const IPath& path, const Question& question) : path(path), question(question) {
        const WantedName wanted = SplitWantedName(question.name);
        foldedStem = Tolvex::FoldCase(wanted.stem);
        parents = PathManagement::SplitPartialPathname(wanted.folders);
        for (const auto& extension : *question.extensions)
            foldedExtensions.push_back(Tolvex::FoldCase(extension));
    }

    [[nodiscard]] OffPathFiles Run() {
        for (const auto& main : *path.GetMainEntries())
            waiting.push_back(main->GetIRI());
        for (; !waiting.empty() && result.isComplete; waiting.pop_front())
            Visit(waiting.front());
        std::ranges::sort(result.files, {}, [](const OffPathFiles::File& file) {
            return std::pair(std::ranges::count(file.location.getPath(), u'/'), file.location);
        });
        return std::move(result);
    }

private:
    void Visit(const AbsoluteIRI& location) {
        try {
            const auto folder = storage->openFolder(location);
            const CanonicalAbsoluteIRI canonical = folder->getCanonicalLocation();
            if (!entered.insert(canonical).second)
                return;
            if (entered.size() > offPathFolderLimit) {
                result.isComplete = false;
                return;
            }
            folder->list(listing);
            Take(location, IsWanted(location, canonical, folder->getPathComparator()));
        } catch (const Tolvex::StorageError&) {
            return; // others may hold what is looked for
        }
    }

    void Take(const AbsoluteIRI& folder, bool withFiles) {
        for (const FolderListing::Item& item : listing.GetItems()) {
            const ustring_view name = listing.GetName(item);
            if (item.kind == FolderListing::Kind::folder)
                waiting.push_back(folder.getChild(name));
            else if (withFiles && IsWantedName(name))
                result.files.push_back({folder.getChild(name), GetNearestMainFolder(folder)});
        }
    }

    [[nodiscard]] bool IsWanted(const AbsoluteIRI& location, const CanonicalAbsoluteIRI& canonical,
                                const Tolvex::PathComparator& comparator) const {
        return question.scope->Contains(PathManagement::GetPathEntryTypeFromLocation(location)) &&
               PathManagement::DoesPartialPathnameMatchPathEntryIRI(parents, location, comparator) &&
               path.GetPathEntryFromAbsoluteIRI(canonical) == nullptr &&
               path.GetPathEntryFromAbsoluteIRI(CanonicalAbsoluteIRI::fromCanonical(location)) == nullptr;
    }

    [[nodiscard]] bool IsWantedName(ustring_view name) const {
        const auto parts = PathManagement::SplitFileName(name);
        return Tolvex::FoldCase(parts.stem) == foldedStem &&
               std::ranges::find(foldedExtensions, Tolvex::FoldCase(parts.extension)) != foldedExtensions.end();
    }

    const IPath& path;
    const Question& question;
    const Tolvex::StorageSystemReference storage = TolvexStorageSystem::GetStorageSystemReference();
    Tolvex::ustring foldedStem;
    std::vector<Tolvex::ustring> foldedExtensions;
    PathManagement::PathnameComponents parents;
    std::deque<AbsoluteIRI> waiting;
    std::unordered_set<AbsoluteIRI, Tolvex::IRIHash> entered;
    FolderListing listing;
    OffPathFiles result;
};

} // namespace

OffPathFiles FindOffPath(const IPath& path, const Question& question) {
    return OffPathSearch(path, question).Run();
}

} // namespace TolvexPath
