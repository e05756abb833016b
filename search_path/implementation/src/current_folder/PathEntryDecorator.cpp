#include "current_folder/PathEntryDecorator.h"

#include <utility>

namespace PathManagement {

PathEntryDecorator::PathEntryDecorator(std::shared_ptr<const IPathEntry> decoratedEntry) noexcept
    : decoratedEntry(std::move(decoratedEntry)) {}

PathEntryDecorator::~PathEntryDecorator() = default;

PathEntryType PathEntryDecorator::GetPathEntryType() const {
    return decoratedEntry->GetPathEntryType();
}

std::shared_ptr<const PathItemVector> PathEntryDecorator::GetPathItems() const {
    return decoratedEntry->GetPathItems();
}

Tolvex::CanonicalAbsoluteIRI PathEntryDecorator::GetIRI() const {
    return decoratedEntry->GetIRI();
}

ustring PathEntryDecorator::GetDescriptor() const {
    return decoratedEntry->GetDescriptor();
}

std::shared_ptr<const IPathEntry> PathEntryDecorator::GetPrivateEntry() const {
    return decoratedEntry->GetPrivateEntry();
}

std::shared_ptr<const IPathEntry> PathEntryDecorator::GetResourcesEntry() const {
    return decoratedEntry->GetResourcesEntry();
}

std::shared_ptr<const PathEntryVector> PathEntryDecorator::GetPackageEntries() const {
    return decoratedEntry->GetPackageEntries();
}

std::shared_ptr<const PathEntryVector> PathEntryDecorator::GetMethodEntries() const {
    return decoratedEntry->GetMethodEntries();
}

std::shared_ptr<const PathEntryVector> PathEntryDecorator::GetUDDClassEntries() const {
    return decoratedEntry->GetUDDClassEntries();
}

std::shared_ptr<const PathItem> PathEntryDecorator::FindFirst(const SearchTarget& target,
                                                              FilenameMatchingPolicy policy) const {
    return decoratedEntry->FindFirst(target, policy);
}

PathItemVector PathEntryDecorator::FindAll(const SearchTarget& target, FilenameMatchingPolicy policy) const {
    return decoratedEntry->FindAll(target, policy);
}

bool PathEntryDecorator::ForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    return decoratedEntry->ForEachEntry(scope, callback);
}

bool PathEntryDecorator::ConcurrentForEachEntry(SearchScope scope, const PathEntryCallback& callback) const {
    return decoratedEntry->ConcurrentForEachEntry(scope, callback);
}

std::shared_ptr<const FilenameMatcher> PathEntryDecorator::CreateFilenameMatcher(FilenameMatchingPolicy policy) const {
    return decoratedEntry->CreateFilenameMatcher(policy);
}

bool PathEntryDecorator::IsOutOfDate() const {
    return decoratedEntry->IsOutOfDate();
}

std::shared_ptr<const IPathEntry> PathEntryDecorator::GetUpdatedPathEntry(const IPathEntryFactory& factory,
                                                                          const IFolderMonitor& monitor) const {
    return decoratedEntry->GetUpdatedPathEntry(factory, monitor);
}

const Tolvex::PathComparator& PathEntryDecorator::GetPathComparator() const {
    return decoratedEntry->GetPathComparator();
}

} // namespace PathManagement
