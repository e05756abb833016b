#include "path_model/PathEntry.h"

#include "foundation/diagnostics/Terminate.h"
#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/events/PathEntryWillBeDestroyedEvent.h"
#include "path_model/ItemSearch.h"

#include <utility>

namespace PathManagement {

using Tolvex::CaseModifier;

namespace {

/// Most folders have no child folders of a kind: they all hand out one empty vector, through handles that own and
/// count nothing. It is never destroyed, so that entries may outlive every static object.
std::shared_ptr<const PathEntryVector> Share(PathEntryVector&& entries) {
    if (!entries.empty())
        return std::make_shared<const PathEntryVector>(std::move(entries));
    static const auto* const none = new PathEntryVector();
    return {std::shared_ptr<const void>(), none};
}

FilenameMatcher MakeFilenameMatcher(const Tolvex::PathComparator& comparator, CaseModifier modifier) {
    return [&comparator, modifier](const ustring& candidate, const ustring& wanted) {
        return comparator(candidate, wanted, modifier);
    };
}

} // namespace

PathEntry::PathEntry(Tolvex::CanonicalAbsoluteIRI location, ustring descriptor, PathEntryType type,
                     PathEntryChildren children, std::span<const ustring_view> fileNames,
                     const Tolvex::PathComparator& pathComparator,
                     std::unique_ptr<Tolvex::IFileFolderObserver> observer,
                     boost::shared_ptr<Tolvex::EventMgr> eventManager)
    : location(std::move(location)), descriptor(std::move(descriptor)), type(type),
      packageEntries(Share(std::move(children.packageEntries))),
      methodEntries(Share(std::move(children.methodEntries))),
      uddClassEntries(Share(std::move(children.uddClassEntries))), privateEntry(std::move(children.privateEntry)),
      resourcesEntry(std::move(children.resourcesEntry)), items(PathItemBlock::Create(this->location, fileNames)),
      pathComparator(pathComparator), matchers{MakeFilenameMatcher(this->pathComparator, caseModifiers[0]),
                                               MakeFilenameMatcher(this->pathComparator, caseModifiers[1]),
                                               MakeFilenameMatcher(this->pathComparator, caseModifiers[2])},
      observer(std::move(observer)), observerCoversChildren(this->observer->observesChildFoldersToo()),
      eventManager(std::move(eventManager)) {}

PathEntry::~PathEntry() {
    try {
        eventManager->PublishNow(PathEntryWillBeDestroyedEvent(*this, location));
    } catch (...) {
        // A listener's failure must not keep the entry alive or end the thread that happened to drop it.
    }
}

PathEntryType PathEntry::GetPathEntryType() const {
    return type;
}

std::shared_ptr<const PathItemVector> PathEntry::GetPathItems() const {
    return itemHandles.Get([this] {
        auto handles = std::make_shared<PathItemVector>();
        handles->reserve(GetItems().size());
        for (const PathItem& item : GetItems())
            handles->emplace_back(items, &item);
        return std::shared_ptr<const PathItemVector>(std::move(handles));
    });
}

Tolvex::CanonicalAbsoluteIRI PathEntry::GetIRI() const {
    return location;
}

ustring PathEntry::GetDescriptor() const {
    return descriptor;
}

std::shared_ptr<const IPathEntry> PathEntry::GetPrivateEntry() const {
    return privateEntry;
}

std::shared_ptr<const IPathEntry> PathEntry::GetResourcesEntry() const {
    return resourcesEntry;
}

std::shared_ptr<const PathEntryVector> PathEntry::GetPackageEntries() const {
    return packageEntries;
}

std::shared_ptr<const PathEntryVector> PathEntry::GetMethodEntries() const {
    return methodEntries;
}

std::shared_ptr<const PathEntryVector> PathEntry::GetUDDClassEntries() const {
    return uddClassEntries;
}

std::shared_ptr<const PathItem> PathEntry::FindFirst(const SearchTarget& target, FilenameMatchingPolicy policy) const {
    const ItemQuestion question{target, pathComparator, GetCaseModifier(policy)};
    const PathItem* found = FindFirstItem(items->FindByNormalizedStem(target.GetNormalizedName()), question);
    return found == nullptr ? nullptr : std::shared_ptr<const PathItem>(items, found);
}

PathItemVector PathEntry::FindAll(const SearchTarget& target, FilenameMatchingPolicy policy) const {
    PathItemVector result;
    const ItemQuestion question{target, pathComparator, GetCaseModifier(policy)};
    FindAllItems(items->FindByNormalizedStem(target.GetNormalizedName()), question,
                 [&](const PathItem& item) { result.emplace_back(items, &item); });
    return result;
}

/// Calls `visit` with each child, in the fixed order of all walks, until one call returns true.
template <class Visit>
bool PathEntry::AnyChild(const Visit& visit) const {
    for (const auto* entries : {packageEntries.get(), methodEntries.get(), uddClassEntries.get()})
        for (const auto& entry : *entries)
            if (visit(*entry))
                return true;
    return (privateEntry && visit(*privateEntry)) || (resourcesEntry && visit(*resourcesEntry));
}

bool PathEntry::ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    if (scope.Contains(type) && callback(shared_from_this()))
        return true;
    return AnyChild([&](const IPathEntry& child) { return child.ForEachEntry(scope, callback); });
}

bool PathEntry::ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    return ForEachEntry(scope, callback);
}

std::shared_ptr<const FilenameMatcher> PathEntry::CreateFilenameMatcher(FilenameMatchingPolicy policy) const {
    // The matcher points into this entry, so its handle keeps the entry alive.
    return {shared_from_this(), &GetFilenameMatcher(policy)};
}

const FilenameMatcher& PathEntry::GetFilenameMatcher(FilenameMatchingPolicy policy) const {
    const auto place = static_cast<std::size_t>(policy);
    if (place >= matchers.size())
        Tolvex::DiagnosticTerminate("Unrecognized FilenameMatchingPolicy passed to GetFilenameMatcher");
    return matchers[place];
}

bool PathEntry::IsOutOfDate() const {
    if (observer->hasChanged())
        return true;
    if (observerCoversChildren)
        return false;
    return AnyChild([](const IPathEntry& child) { return child.IsOutOfDate(); });
}

std::shared_ptr<const IPathEntry> PathEntry::GetUpdatedPathEntry(const IPathEntryFactory& factory,
                                                                 const IFolderMonitor& monitor) const {
    return factory.CreatePathEntry(location, monitor);
}

const Tolvex::PathComparator& PathEntry::GetPathComparator() const {
    return pathComparator;
}

} // namespace PathManagement
