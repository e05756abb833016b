#pragma once

#include "change_tracking/AsynchronousWorkerQueue.h"
#include "foundation/environment/PackageDescriptors.h"
#include "foundation/events/EventMgr.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "foundation/storage/MemoryStorage.h"
#include "path_model/PathEntryFactory.h"
#include "path_model/PathFactory.h"
#include "path_utilities/PathReplacement.h"
#include "path_utilities/UniformFolderMonitor.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace PathManagement {

/// A folder tree in memory with a factory for entries and one for paths over it.
class PathWorld {
public:
    explicit PathWorld(const std::vector<std::string>& paths,
                       Tolvex::MemoryStorage::CaseRule caseRule = Tolvex::MemoryStorage::CaseRule::sensitive)
        : storage(std::make_shared<Tolvex::MemoryStorage>(paths, caseRule)) {}

    /// Another environment, as after a start, over the tree of one that is there.
    explicit PathWorld(std::shared_ptr<Tolvex::MemoryStorage> storage) : storage(std::move(storage)) {}

    static Tolvex::CanonicalAbsoluteIRI At(std::string_view path) {
        return Tolvex::CanonicalAbsoluteIRI::fromCanonical(Tolvex::MemoryStorage::GetIRI(path));
    }

    std::shared_ptr<const IPathEntry> Entry(std::string_view path) {
        return factory.CreatePathEntry(At(path), monitor);
    }

    std::shared_ptr<const IPath> PathOf(const PathEntryVector& entries,
                                        const std::shared_ptr<const IPath>& previous = nullptr) {
        return pathFactory.CreatePath(std::make_shared<const PathEntryVector>(entries), previous);
    }

    /// `previous` with what differs between two lists of one length exchanged.
    std::shared_ptr<const IPath> PathWithReplacements(const std::shared_ptr<const IPath>& previous,
                                                      const PathEntryVector& before, const PathEntryVector& after) {
        PathEntryVector replaced;
        PathEntryVector replacements;
        for (std::size_t i = 0; i < before.size(); ++i)
            if (before[i] != after[i]) {
                replaced.push_back(before[i]);
                replacements.push_back(after[i]);
            }
        return CreatePathWithReplacements(pathFactory, previous, replaced, replacements);
    }

    std::shared_ptr<const IPath> PathOf(std::initializer_list<std::string_view> folders) {
        PathEntryVector entries;
        for (const auto folder : folders)
            entries.push_back(Entry(folder));
        return PathOf(entries);
    }

    /// How many folders were listed since this was last asked.
    std::size_t TakeListings() {
        const std::size_t count = storage->GetListings().size();
        storage->ClearListings();
        return count;
    }

    std::shared_ptr<Tolvex::MemoryStorage> storage;
    boost::shared_ptr<Tolvex::LocalEventMgr> events = Tolvex::createLocalEventMgr("test");
    UniformFolderMonitor monitor;
    PathEntryFactory factory{At("/"), storage, TolvexPackages::GetPackageDescriptorFactory(), events,
                             Tolvex::GetFileFolderObserverFactory(storage)};
    std::shared_ptr<AsynchronousWorkerQueue> queue = std::make_shared<AsynchronousWorkerQueue>();
    PathFactory pathFactory{queue};
};

/// "stem+extension" of each item, joined by blanks.
inline std::string Names(const PathItemVector& items) {
    std::string names;
    for (const auto& item : items)
        names += (names.empty() ? "" : " ") + Tolvex::ToUtf8(ustring(item->GetStem()).append(item->GetExtension()));
    return names;
}

/// The path text of an entry; "-" for none.
inline std::string Where(const std::shared_ptr<const IPathEntry>& entry) {
    return entry ? Tolvex::ToUtf8(entry->GetIRI().getPath()) : "-";
}

inline std::string Where(const PathEntryVector& entries) {
    std::string text;
    for (const auto& entry : entries)
        text += (text.empty() ? "" : " ") + Where(entry);
    return text;
}

inline std::string File(const FoundItem& found) {
    return Tolvex::ToUtf8(found.GetItem().GetIRI().getPath());
}

inline std::string File(const std::optional<FoundItem>& found) {
    return found ? File(*found) : "-";
}

inline std::string Descriptor(const IPathEntry& entry) {
    const std::string text = Tolvex::ToUtf8(entry.GetDescriptor());
    constexpr std::string_view scheme = "memory://";
    return text.starts_with(scheme) ? text.substr(scheme.size()) : text;
}

/// "type descriptor [items]" of an entry and, in brackets, of its children.
inline std::string Draw(const IPathEntry& entry) {
    std::string text = std::to_string(static_cast<int>(entry.GetPathEntryType())) + " " + Descriptor(entry) + " [" +
                       Names(*entry.GetPathItems()) + "]";
    for (const auto& list : {entry.GetPackageEntries(), entry.GetMethodEntries(), entry.GetUDDClassEntries()})
        for (const auto& child : *list)
            text += " (" + Draw(*child) + ")";
    for (const auto& child : {entry.GetPrivateEntry(), entry.GetResourcesEntry()})
        if (child)
            text += " (" + Draw(*child) + ")";
    return text;
}

} // namespace PathManagement
